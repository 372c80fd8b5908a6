#include "ui/engine/SceneInput.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "ui/engine/HitTest.h"
#include "ui/engine/Host.h"
#include "ui/engine/Node.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

/// Pages turn by so many steps of a control.
constexpr double stepsOfPage = 10;

bool isInteractive(const Node& node) { return node.attributes.interaction != nullptr; }

/// How many steps of a control a key stands for.
double stepsOf(Key key) {
  switch (key) {
    case Key::left:
    case Key::down:
      return -1;
    case Key::right:
    case Key::up:
      return 1;
    case Key::pageDown:
      return -stepsOfPage;
    case Key::pageUp:
      return stepsOfPage;
    default:
      return 0;
  }
}

}  // namespace

SceneInput::SceneInput(Scene& scene)
    : scene_(scene), gestures_(scene), focus_(scene), tooltip_(scene), menus_(scene) {}

void SceneInput::moved(Point point, Modifiers modifiers) {
  pointer_ = point;
  Node* const withTooltip = updateHover();
  tooltip_.pointerMoved(gestures_.isUnderWay() ? nullptr : withTooltip, point);
  gestures_.move(point, modifiers);
}

void SceneInput::left() {
  pointer_.reset();
  tooltip_.pointerMoved(nullptr, {});
  updateHover();
}

void SceneInput::pressed(Point point, PointerButton button, Modifiers modifiers) {
  pointer_ = point;
  tooltip_.hide();
  updateHover();
  const auto control = hitTest::at(scene_.root(), point,
      [](const Node& node) { return isInteractive(node) && node.attributes.interaction->takesFocus(); });
  // Where it was clicked Tab goes on.
  if (!control.empty()) focus_.moveTo(control.front(), false);
  gestures_.press(point, button, modifiers);
}

void SceneInput::released(Point point, PointerButton button, Modifiers modifiers) {
  pointer_ = point;
  gestures_.release(point, button, modifiers);
}

bool SceneInput::scrolled(Point point, Point delta, bool wheel) {
  const auto adjustable = hitTest::at(scene_.root(), point, [](const Node& node) {
    const auto& interaction = node.attributes.interaction;
    return interaction && interaction->value && interaction->value->set;
  });
  if (!adjustable.empty()) {
    turn(*adjustable.front(), delta.x + delta.y);
    return true;
  }
  const Point turned = delta.x == 0 ? Point{delta.y, 0} : Point{0, delta.x};
  for (const Point way : {delta, wheel ? turned : delta}) {
    Node* const content = scrollable(point, way);
    if (!content) continue;
    content->element->scroll(*content, way);
    scene_.scrolled();
    return true;
  }
  return false;
}

bool SceneInput::canScroll(Point point, Point delta) const { return scrollable(point, delta); }

/// The innermost content there that has a way to go, or null.
Node* SceneInput::scrollable(Point point, Point delta) const {
  const auto found = hitTest::at(
      scene_.root(), point, [&](const Node& node) { return node.element->canScroll(node, delta); });
  return found.empty() ? nullptr : found.front();
}

bool SceneInput::key(const KeyEvent& event) {
  focus_.setActive(true);
  if (event.key == Key::escape && gestures_.isUnderWay()) {
    gestures_.cancel();
    return true;
  }
  tooltip_.hide();
  const WeakNode focused = focus_.node();
  if (offer(event, focused) || openMenu(focused, event)) return true;
  if (event.key == Key::tab && !event.modifiers.control && !event.modifiers.alt)
    return focus_.step(!event.modifiers.shift);
  return event.modifiers == Modifiers{} && ((focused && operate(*focused, event.key)) || focus_.move(event));
}

/// A click of the wheel is a step of the control.
void SceneInput::turn(Node& control, double distance) {
  const WeakNode turned = control;
  // Of several turns at once each begins where the one before has led to.
  scene_.commit(std::nullopt);
  if (!turned) return;
  const auto interaction = turned->attributes.interaction;
  const AdjustableValue& value = *interaction->value;
  value.set(std::clamp(value.now + distance / pointsPerClick * value.step, value.least, value.most));
}

/// First to the view with the focus and those around it, then from the front to the back to all others but
/// controls: what a key does to those, it does to the one with the focus.
bool SceneInput::offer(const KeyEvent& event, Node* focused) {
  std::vector<WeakNode> order;
  for (Node* node = focused; node; node = node == &focus_.scope() ? nullptr : node->parent) {
    order.emplace_back(node);
  }
  const std::function<void(Node&)> collect = [&](Node& node) {
    if (node.isLeaving || (isInteractive(node) && node.attributes.interaction->disabled)) return;
    for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) collect(**child);
    const bool isControl = node.attributes.interaction && node.attributes.interaction->takesFocus();
    if (!isControl && std::ranges::find(order, &node, &WeakNode::get) == order.end())
      order.emplace_back(node);
  };
  collect(focus_.scope());
  return std::ranges::any_of(order, [&](Node* node) {
    // Kept: the handler may make the views anew.
    const auto interaction = node ? node->attributes.interaction : nullptr;
    return interaction && interaction->onKey && interaction->onKey(event);
  });
}

/// Opens the menu that a key asks for.
bool SceneInput::openMenu(Node* focused, const KeyEvent& event) {
  if (!focused) return false;
  const auto interaction = focused->attributes.interaction;
  const bool operates =
      event.modifiers == Modifiers{} &&
      (event.key == Key::enter || event.key == Key::space || event.key == Key::down);
  if (interaction->menu && operates) {
    menus_.open(interaction->menu(), focused->presentedInScene(), *focused, true);
    return true;
  }
  for (Node* node = event.key == Key::menu ? focused : nullptr; node; node = node->parent) {
    if (!isInteractive(*node) || !node->attributes.interaction->contextMenu) continue;
    menus_.open(node->attributes.interaction->contextMenu(), focused->presentedInScene(), *focused, true);
    return true;
  }
  return false;
}

void SceneInput::focusMenu(bool byKey) {
  focus_.moveTo(nullptr, false);
  if (byKey) focus_.move({.key = Key::home});
}

void SceneInput::keyboardChanged(bool has) {
  focus_.setActive(has);
  if (!has) menus_.close();
}

void SceneInput::setCursor(Cursor cursor) {
  if (cursor == cursor_) return;
  cursor_ = cursor;
  if (Host* host = scene_.host()) host->setCursor(cursor);
}

/// What a key does to a control by itself.
bool SceneInput::operate(Node& control, Key key) {
  const auto interaction = control.attributes.interaction;
  if ((key == Key::enter || key == Key::space) && interaction->action()) {
    interaction->action()();
    return true;
  }
  if (!interaction->value || !interaction->value->set) return false;
  const AdjustableValue& value = *interaction->value;
  const double wanted =
      key == Key::home ? value.least
      : key == Key::end
          ? value.most
          : value.now + stepsOf(key) * value.step;
  if (wanted == value.now && stepsOf(key) == 0) return key == Key::home || key == Key::end;
  value.set(std::clamp(wanted, value.least, value.most));
  return true;
}

bool SceneInput::focus(const std::string& id) {
  const std::function<Node*(Node&, bool)> search = [&](Node& node, bool inside) -> Node* {
    inside = inside || node.attributes.key == id;
    const auto& interaction = node.attributes.interaction;
    if (inside && interaction && interaction->takesFocus() && hitTest::takesInput(node)) return &node;
    for (const auto& child : node.children) {
      if (Node* found = search(*child, inside)) return found;
    }
    return nullptr;
  };
  Node* const found = search(focus_.scope(), false);
  if (found) focus_.moveTo(found, true);
  return found;
}

bool SceneInput::reveal(const std::string& id) {
  const std::function<Node*(Node&)> search = [&](Node& node) -> Node* {
    if (node.attributes.key == id) return &node;
    for (const auto& child : node.children) {
      if (Node* found = search(*child)) return found;
    }
    return nullptr;
  };
  Node* const found = search(scene_.root());
  if (found) focus_.reveal(*found);
  return found;
}

/// The content may have moved under a resting pointer, and views may have gone.
void SceneInput::sceneMoved() {
  gestures_.cancelVanished();
  menus_.forgetVanished();
  focus_.forgetVanished();
  if (pointer_) tooltip_.viewChanged(updateHover(), *pointer_);
}

/// @return the view under the pointer with a tooltip, or null
Node* SceneInput::updateHover() {
  std::vector<Node*> inside;
  if (pointer_) {
    const auto under = hitTest::at(scene_.root(), *pointer_, isInteractive);
    for (Node* node = under.empty() ? nullptr : under.front(); node; node = node->parent) {
      if (isInteractive(*node)) inside.push_back(node);
    }
  }
  const std::vector<WeakNode> before = std::exchange(hovered_, {inside.begin(), inside.end()});
  const auto first = [](const auto& nodes, const std::function<bool(const Interaction&)>& wanted) {
    const auto found = std::ranges::find_if(nodes,
        [&](Node* node) { return node && isInteractive(*node) && wanted(*node->attributes.interaction); });
    return found == nodes.end() ? nullptr : static_cast<Node*>(*found);
  };
  const WeakNode withTooltip = first(inside, [](const Interaction& i) { return !i.tooltip.empty(); });
  Node* const withCursor = first(inside, [](const Interaction& i) { return i.cursor.has_value(); });
  setCursor(withCursor ? *withCursor->attributes.interaction->cursor : Cursor::arrow);

  // From here on handlers may make the views anew.
  std::vector<std::pair<std::shared_ptr<const Interaction>, bool>> calls;
  for (Node* node : before) {
    if (node && std::ranges::find(inside, node) == inside.end())
      calls.emplace_back(node->attributes.interaction, false);
  }
  for (Node* node : inside) {
    if (std::ranges::find(before, node, &WeakNode::get) == before.end())
      calls.emplace_back(node->attributes.interaction, true);
  }
  // In a menu the focus goes with the pointer; when the menu has gone it is elsewhere already.
  const auto isItem = [](const Interaction& i) { return i.role == Role::menuItem; };
  Node* const item = first(inside, isItem);
  const Node* const focused = focus_.node();
  if (item != first(before, isItem) && (item || (focused && isItem(*focused->attributes.interaction))))
    focus_.moveTo(item && item->attributes.interaction->takesFocus() ? item : nullptr, false);
  for (const auto& [interaction, hovering] : calls) {
    if (interaction && interaction->onHover) interaction->onHover(hovering);
  }
  return withTooltip;
}

}  // namespace tarnwick::ui
