#include "ui/engine/SceneInput.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "ui/engine/HitTest.h"
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

SceneInput::SceneInput(Scene& scene) : scene_(scene), gestures_(scene), focus_(scene), tooltip_(scene) {}

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
  const auto control = hitTest::at(scene_.root(), point, [](const Node& node) {
    return isInteractive(node) && node.attributes.interaction->takesFocus();
  });
  // Where it was clicked Tab goes on.
  if (!control.empty()) focus_.moveTo(control.front(), false);
  gestures_.press(point, button, modifiers);
}

void SceneInput::released(Point point, PointerButton button, Modifiers modifiers) {
  pointer_ = point;
  gestures_.release(point, button, modifiers);
}

bool SceneInput::scrolled(Point point, Point delta, bool wheel) {
  const Point turned = delta.x == 0 ? Point{delta.y, 0} : Point{0, delta.x};
  for (const Point way : {delta, wheel ? turned : delta}) {
    const auto found = hitTest::at(scene_.root(), point,
                                   [&](const Node& node) { return node.element->canScroll(node, way); });
    if (found.empty()) continue;
    found.front()->element->scroll(*found.front(), way);
    scene_.scrolled();
    return true;
  }
  return false;
}

bool SceneInput::key(const KeyEvent& event) {
  focus_.setActive(true);
  if (event.key == Key::escape && gestures_.isUnderWay()) {
    gestures_.cancel();
    return true;
  }
  tooltip_.hide();
  WeakNode focused = focus_.node();
  if (offer(event, focused)) return true;
  if (event.key == Key::tab && !event.modifiers.control && !event.modifiers.alt)
    return focus_.step(!event.modifiers.shift);
  return event.modifiers == Modifiers{} && ((focused && operate(*focused, event.key)) || focus_.move(event));
}

/// First to the view with the focus and those around it, then to all others from the front to the back.
bool SceneInput::offer(const KeyEvent& event, Node* focused) {
  std::vector<WeakNode> order;
  for (Node* node = focused; node; node = node->parent) order.emplace_back(node);
  const std::function<void(Node&)> collect = [&](Node& node) {
    if (node.isLeaving || (isInteractive(node) && node.attributes.interaction->disabled)) return;
    for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) collect(**child);
    if (std::ranges::find(order, &node, &WeakNode::get) == order.end()) order.emplace_back(node);
  };
  collect(scene_.root());
  return std::ranges::any_of(order, [&](Node* node) {
    // Kept: the handler may make the views anew.
    const auto interaction = node ? node->attributes.interaction : nullptr;
    return interaction && interaction->onKey && interaction->onKey(event);
  });
}

/// What a key does to a control by itself.
bool SceneInput::operate(Node& control, Key key) {
  const auto interaction = control.attributes.interaction;
  if ((key == Key::enter || key == Key::space) && interaction->onTap) {
    interaction->onTap();
    return true;
  }
  if (!interaction->value || !interaction->value->set) return false;
  const AdjustableValue& value = *interaction->value;
  const double wanted = key == Key::home  ? value.least
                        : key == Key::end ? value.most
                                          : value.now + stepsOf(key) * value.step;
  if (wanted == value.now && stepsOf(key) == 0) return key == Key::home || key == Key::end;
  value.set(std::clamp(wanted, value.least, value.most));
  return true;
}

/// The content may have moved under a resting pointer, and views may have gone.
void SceneInput::sceneMoved() {
  gestures_.cancelVanished();
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
  std::vector<std::pair<std::shared_ptr<const Interaction>, bool>> calls;
  const std::vector<WeakNode> before = std::exchange(hovered_, {inside.begin(), inside.end()});
  for (Node* node : before) {
    if (node && std::ranges::find(inside, node) == inside.end())
      calls.emplace_back(node->attributes.interaction, false);
  }
  WeakNode withTooltip;
  for (Node* node : inside) {
    if (!withTooltip && !node->attributes.interaction->tooltip.empty()) withTooltip = node;
    if (std::ranges::find(before, node, &WeakNode::get) == before.end())
      calls.emplace_back(node->attributes.interaction, true);
  }
  // Last: a handler may make the views anew.
  for (const auto& [interaction, hovering] : calls) {
    if (interaction && interaction->onHover) interaction->onHover(hovering);
  }
  return withTooltip;
}

}  // namespace tarnwick::ui
