#include "ui/View.h"

#include <cmath>
#include <numbers>

#include "ui/Description.h"
#include "ui/Dynamic.h"

namespace tarnwick::ui {

Namespace Namespace::make() {
  static int last = 0;
  return {++last};
}

View::View(std::shared_ptr<const Element> element, std::vector<View> children)
    : description_(std::make_shared<Description>(Description{std::move(element), std::move(children), {}})) {}

ViewList::ViewList(std::initializer_list<Item> items) {
  for (const Item& item : items) views.insert(views.end(), item.views.begin(), item.views.end());
}

/// Two effects of one kind on the same view nest: the second one gets a group of its own. So does one behind
/// a clip or a shadow, which it applies to as well.
View View::effect(EffectKind kind, const std::function<void(Effects&)>& change) const {
  if (isEmpty()) return *this;
  const Attributes& mine = description_->attributes;
  if ((mine.effectKinds & unsigned(kind)) || mine.clip || !mine.shadows.empty())
    return Group(*this).effect(kind, change);
  return with([&](Attributes& attributes) {
    attributes.effectKinds |= unsigned(kind);
    change(attributes.effects);
  });
}

View View::inside(std::shared_ptr<const Element> element) const {
  return isEmpty() ? *this : View(std::move(element), {*this});
}

View View::interaction(const std::function<void(Interaction&)>& change) const {
  return with([&](Attributes& attributes) {
    auto copy = attributes.interaction ? std::make_shared<Interaction>(*attributes.interaction)
                                       : std::make_shared<Interaction>();
    change(*copy);
    attributes.interaction = std::move(copy);
  });
}

View View::opacity(double opacity) const {
  return effect(EffectKind::opacity, [=](Effects& e) { e.opacity = opacity; });
}
View View::offset(Point offset) const {
  return effect(EffectKind::offset, [=](Effects& e) { e.offset = offset; });
}
View View::scaleEffect(double scale, UnitPoint anchor) const { return scaleEffect(scale, scale, anchor); }
View View::scaleEffect(double x, double y, UnitPoint anchor) const {
  return effect(EffectKind::scaleOrRotation, [=](Effects& e) {
    e.scaleX = x;
    e.scaleY = y;
    e.anchor = anchor;
  });
}
View View::rotation(double degrees, UnitPoint anchor) const {
  return effect(EffectKind::scaleOrRotation, [=](Effects& e) {
    e.rotation = degrees;
    e.anchor = anchor;
  });
}
View View::blur(double radius) const {
  return effect(EffectKind::blur, [=](Effects& e) { e.blur = radius; });
}
View View::brightness(double amount) const {
  return effect(EffectKind::brightness, [=](Effects& e) { e.brightness = amount; });
}
View View::clipShape(Shape shape) const {
  return Group(*this).with([&](Attributes& a) { a.clip = std::move(shape); });
}
View View::shadow(Color color, double radius, Point offset) const {
  return with([&](Attributes& a) { a.shadows.push_back({color, radius, offset}); });
}

View View::font(const Font& font) const {
  return with([&](Attributes& a) { a.font = font; });
}
View View::foreground(Color color) const {
  return with([&](Attributes& a) { a.foreground = color; });
}
View View::monospacedDigits() const {
  return with([](Attributes& a) { a.monospacedDigits = true; });
}
View View::truncated(Truncation truncation) const {
  return with([=](Attributes& a) { a.truncation = truncation; });
}
View View::contentTransition(ContentTransition transition) const {
  return with([=](Attributes& a) { a.contentTransition = transition; });
}

View View::id(std::string key) const {
  return with([&](Attributes& a) { a.key = std::move(key); });
}
View View::animation(const Animation& animation, AnyValue value) const {
  return with([&](Attributes& a) { a.animations.emplace_back(animation, std::move(value)); });
}
View View::transition(Transition transition) const {
  return with([&](Attributes& a) { a.transition = std::move(transition); });
}
View View::bounce(AnyValue value, bool onAppear) const {
  return with([&](Attributes& a) { a.bounce = Attributes::Bounce{std::move(value), onAppear}; });
}
View View::pulse() const {
  if (isEmpty()) return *this;
  // Slow enough that ten steps a second look smooth, which most of what moves by itself shares.
  constexpr double interval = 0.1, period = 1.5, least = 0.4;
  return timeline(interval, false, [view = *this](Date now) {
    const double phase = std::fmod(now.secondsSince1970, period) / period;
    return view.opacity(least + (1 - least) * (0.5 + 0.5 * std::cos(2 * std::numbers::pi * phase)));
  });
}
View RollingNumber(std::string text, const Animation& animation) {
  return Text(text)
      .monospacedDigits()
      .contentTransition(ContentTransition::numericText)
      .animation(animation, text);
}

View View::onAppear(std::function<void()> action) const {
  return with([&](Attributes& a) { a.onAppear = std::move(action); });
}

namespace {

/// Has `handler` run after those that are there.
template<typename... Arguments>
void append(std::function<void(Arguments...)>& handlers, std::function<void(Arguments...)> handler) {
  if (!handler) return;
  if (!handlers) {
    handlers = std::move(handler);
    return;
  }
  handlers = [first = std::move(handlers), second = std::move(handler)](Arguments... arguments) {
    first(arguments...);
    second(arguments...);
  };
}

/// The same for handlers that tell whether they have used the event.
template<typename Event>
void append(std::function<bool(const Event&)>& handlers, std::function<bool(const Event&)> handler) {
  if (!handlers) {
    handlers = std::move(handler);
    return;
  }
  handlers = [first = std::move(handlers), second = std::move(handler)](const Event& event) {
    const bool used = first(event);
    return second(event) || used;
  };
}

}  // namespace

View View::contentShape(Shape shape) const {
  return interaction([&](Interaction& i) { i.hitShape = std::move(shape); });
}
View View::onTap(std::function<void()> action, bool enabled) const {
  return interaction([&](Interaction& i) {
    if (enabled) append(i.onTap, std::move(action));
  });
}
View View::onDoubleTap(std::function<void()> action) const {
  return interaction([&](Interaction& i) { append(i.onDoubleTap, std::move(action)); });
}
View View::onHover(std::function<void(bool)> action) const {
  return interaction([&](Interaction& i) { append(i.onHover, std::move(action)); });
}
View View::onHover(State<bool> hovering) const {
  return onHover([hovering](bool value) { hovering.set(value); });
}
View View::onPress(State<bool> pressed) const {
  return interaction([&](Interaction& i) {
    append(i.onPress, std::function([pressed](bool value) { pressed.set(value); }));
  });
}
View View::onDrag(DragGesture gesture) const {
  return interaction([&](Interaction& i) { i.drags.push_back(std::move(gesture)); });
}
View View::onPointer(std::function<bool(const PointerEvent&)> action) const {
  return interaction([&](Interaction& i) { append(i.onPointer, std::move(action)); });
}
View View::menu(std::function<std::vector<MenuItem>()> items) const {
  return interaction([&](Interaction& i) { i.menu = std::move(items); });
}
View View::contextMenu(std::function<std::vector<MenuItem>()> items) const {
  return interaction([&](Interaction& i) { i.contextMenu = std::move(items); });
}
View View::dragsFiles(std::function<std::vector<FilePath>()> files) const {
  return interaction([&](Interaction& i) { i.files = std::move(files); });
}
View View::cursor(Cursor cursor) const {
  return interaction([=](Interaction& i) { i.cursor = cursor; });
}
View View::tooltip(std::string text) const {
  return interaction([&](Interaction& i) { i.tooltip = std::move(text); });
}
View View::allowsHitTesting(bool allows) const {
  return interaction([=](Interaction& i) { i.disabled = !allows; });
}
View View::onKey(std::function<bool(const KeyEvent&)> action) const {
  return interaction([&](Interaction& i) { append(i.onKey, std::move(action)); });
}
View View::onKey(Key key, std::function<void()> action) const {
  return onKey([key, action = std::move(action)](const KeyEvent& event) {
    if (event.key != key || event.modifiers != Modifiers{}) return false;
    action();
    return true;
  });
}
View View::onFocus(std::function<void(bool)> action) const {
  return interaction([&](Interaction& i) { append(i.onFocus, std::move(action)); });
}
View View::onFocus(State<bool> focused) const {
  return onFocus([focused](bool value) { focused.set(value); });
}
View View::modal() const {
  return interaction([](Interaction& i) { i.modal = true; });
}
View View::focusable() const {
  return interaction([](Interaction& i) { i.focusable = true; });
}

View View::arrowKeys(Axis axis) const {
  return interaction([=](Interaction& i) { i.arrows = axis; });
}
View View::accessibility(Role role, std::string name) const {
  return interaction([&](Interaction& i) {
    i.role = role;
    i.accessibilityName = std::move(name);
  });
}
View View::accessibilityChecked(bool checked) const {
  return interaction([=](Interaction& i) { i.checked = checked; });
}
View View::accessibilityValue(AdjustableValue value) const {
  return interaction([&](Interaction& i) { i.value = std::move(value); });
}

}  // namespace tarnwick::ui
