#include "ui/engine/SceneInput.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

/// Seconds that the pointer rests before a tooltip shows, and within which a second click makes a double one.
constexpr double tooltipDelay = 0.7;
constexpr double doubleClickTime = 0.4;

/// Whether it acts on the left button, so that the views around it are not shown as pressed.
bool isControl(const Interaction& i) { return i.onTap || i.onDoubleTap || i.onDrag || i.onClick; }

bool takes(const Node& node, PointerButton button) {
  const auto& i = node.attributes.interaction;
  return i && (i->onClick || (button == PointerButton::left && (i->onPress || isControl(*i))));
}

}  // namespace

HitTest SceneInput::hits() const {
  // A button that shrinks while it is pressed keeps its area.
  return HitTest(*scene_.root_, [this](const Node& node) {
    return gesture_ && std::ranges::any_of(gesture_->grips, [&](const Grip& g) { return g.node == &node; });
  });
}

void SceneInput::moved(Point point) {
  pointer_ = point;
  updateHover();
  awaitTooltip();
  dragTo(point);
  showPresses(point);
}

void SceneInput::left() {
  pointer_.reset();
  updateHover();
}

void SceneInput::pressed(Point point, PointerButton button) {
  pointer_ = point;
  setTooltip(std::nullopt);
  tooltipTimer_ = {};
  updateHover();
  if (gesture_) return;
  const auto chain = hits().chain(point, [=](const Node& node) { return takes(node, button); });
  if (chain.empty()) return;
  gesture_ = Gesture{button, point, {}};
  for (Node* node : chain) gesture_->grips.push_back({node, node->attributes.interaction});
  focus_.pressedOn(*chain.front());
  if (button != PointerButton::left) return;
  showPresses(point);
  dragTo(point);
}

/// Tells the views that are dragged, once the pointer has gone far enough for one of them.
void SceneInput::dragTo(Point point) {
  if (!gesture_ || gesture_->button != PointerButton::left) return;
  const Point way = point - gesture_->start;
  for (Grip& grip : gesture_->grips) {
    Node* const node = grip.node;
    if (!node || !node->attributes.interaction) continue;
    // A copy: the handler may make the view anew, or end it.
    const auto interaction = grip.interaction = node->attributes.interaction;
    if (!interaction->onDrag || (gesture_->dragging && !grip.drag)) continue;
    if (!grip.drag && std::hypot(way.x, way.y) < interaction->dragDistance) continue;
    gesture_->dragging = true;
    const DragValue drag{HitTest::inNode(*node, gesture_->start), HitTest::inNode(*node, point),
                         node->presentedSize};
    grip.drag = drag;
    interaction->onDrag(drag);
    return;
  }
}

/// Shows the innermost control as pressed while the pointer is on it, and what is inside of it.
void SceneInput::showPresses(Point point) {
  if (!gesture_ || gesture_->button != PointerButton::left) return;
  const auto over = hits().chain(point, [](const Node& node) { return takes(node, PointerButton::left); });
  std::vector<std::pair<std::shared_ptr<const Interaction>, bool>> calls;
  for (Grip& grip : gesture_->grips) {
    Node* const node = grip.node;
    if (!node || !node->attributes.interaction) continue;
    grip.interaction = node->attributes.interaction;
    const bool shown = std::ranges::find(over, node) != over.end();
    if (grip.interaction->onPress && shown != grip.pressShown) {
      grip.pressShown = shown;
      calls.emplace_back(grip.interaction, shown);
    }
    if (isControl(*grip.interaction)) break;
  }
  for (const auto& [interaction, shown] : calls) interaction->onPress(shown);
}

void SceneInput::released(Point point, PointerButton button, Modifiers modifiers) {
  pointer_ = point;
  if (!gesture_ || gesture_->button != button) return;
  const auto over = hits().chain(point, [=](const Node& node) { return takes(node, button); });
  Gesture gesture = *std::exchange(gesture_, std::nullopt);
  // What becomes of the click is settled before any handler may end a view.
  std::vector<Click> clicks;
  unsigned long view = 0;
  for (const Grip& grip : gesture.grips) {
    Node* const node = grip.node;
    if (gesture.dragging || !node || std::ranges::find(over, node) == over.end()) continue;
    if (clicks.empty()) view = node->serial;
    clicks.push_back({node->attributes.interaction,
                      {.button = button,
                       .modifiers = modifiers,
                       .location = HitTest::inNode(*node, point),
                       .size = node->presentedSize}});
  }
  for (const Grip& grip : gesture.grips) {
    if (grip.pressShown) grip.interaction->onPress(false);
    if (grip.drag && grip.interaction->onDragEnd) {
      DragValue end = *grip.drag;
      if (const Node* node = grip.node) end.location = HitTest::inNode(*node, point);
      grip.interaction->onDragEnd(end);
    }
  }
  if (clicks.empty()) return;

  const double now = scene_.scheduler_.uptime();
  const bool again =
      lastClick_.view == view && lastClick_.button == button && now - lastClick_.time < doubleClickTime;
  lastClick_ = {view, button, now, again ? lastClick_.count + 1 : 1};
  for (Click& click : clicks) {
    click.event.clickCount = lastClick_.count;
    if (take(click)) return;
  }
}

/// @return whether the view takes the click; those around it do not get it then
bool SceneInput::take(const Click& click) {
  const Interaction& interaction = *click.interaction;
  if (interaction.onClick && interaction.onClick(click.event)) return true;
  if (click.event.button != PointerButton::left) return false;
  if (interaction.onDoubleTap && click.event.clickCount == 2) {
    lastClick_ = {};
    interaction.onDoubleTap();
    return true;
  }
  if (interaction.onTap) interaction.onTap();
  return interaction.onTap || interaction.onDoubleTap;
}

void SceneInput::cancelled() {
  if (!gesture_) return;
  const Gesture gesture = *std::exchange(gesture_, std::nullopt);
  for (const Grip& grip : gesture.grips) breakOff(grip);
}

void SceneInput::breakOff(const Grip& grip) {
  if (grip.pressShown) grip.interaction->onPress(false);
  if (!grip.drag || !grip.interaction->onDragEnd) return;
  DragValue end = *grip.drag;
  end.cancelled = true;
  grip.interaction->onDragEnd(end);
}

bool SceneInput::scrolled(Point point, Point delta, bool wheel) {
  const auto scroll = [&](Point by) {
    Node* node = hits().front(
        point, [&](const Node& candidate) { return candidate.element->canScroll(candidate, by); });
    if (!node) return false;
    node->element->scroll(*node, by);
    scene_.scrolled();
    return true;
  };
  if (scroll(delta)) return true;
  return wheel && delta.x == 0 && scroll({delta.y, 0});
}

/// The content may have moved under a resting pointer, and what is held may have gone.
void SceneInput::sceneMoved() {
  if (tooltip_ && !tooltipNode_) setTooltip(std::nullopt);
  if (gesture_) {
    std::vector<Grip> gone;
    std::erase_if(gesture_->grips, [&](Grip& grip) {
      const Node* node = grip.node;
      if (node && !node->leaves()) return false;
      gone.push_back(grip);
      return true;
    });
    if (gesture_->grips.empty()) gesture_.reset();
    for (const Grip& grip : gone) breakOff(grip);
  }
  if (pointer_) updateHover();
  focus_.sceneMoved();
}

void SceneInput::updateHover() {
  std::vector<Node*> inside;
  if (pointer_) {
    Node* front = hits().front(*pointer_, [](const Node& node) { return bool(node.attributes.interaction); });
    for (Node* node = front; node; node = node->parent) {
      if (node->attributes.interaction) inside.push_back(node);
    }
  }
  std::vector<std::pair<std::shared_ptr<const Interaction>, bool>> calls;
  const std::vector<WeakNode> before = std::exchange(hovered_, {inside.begin(), inside.end()});
  for (Node* node : before) {
    if (node && std::ranges::find(inside, node) == inside.end())
      calls.emplace_back(node->attributes.interaction, false);
  }
  Node* withTooltip = nullptr;
  for (Node* node : inside) {
    if (!withTooltip && !node->attributes.interaction->tooltip.empty()) withTooltip = node;
    if (std::ranges::find(before, node, &WeakNode::get) == before.end())
      calls.emplace_back(node->attributes.interaction, true);
  }
  if (withTooltip != tooltipNode_) {
    tooltipNode_ = withTooltip;
    awaitTooltip();
  }
  // Last: a handler may make the views anew.
  for (const auto& [interaction, hovering] : calls) {
    if (interaction && interaction->onHover) interaction->onHover(hovering);
  }
}

/// What the outermost clip around a view leaves of the scene: beyond it there may be another program's
/// window.
Rect SceneInput::surfaceOf(const Node& node) const {
  Rect surface{0, 0, scene_.size().width, scene_.size().height};
  for (const Node* n = &node; n; n = n->parent) {
    if (n->attributes.clip) surface = Scene::presentedFrame(*n);
  }
  return surface;
}

/// From now on the pointer rests.
void SceneInput::awaitTooltip() {
  setTooltip(std::nullopt);
  tooltipTimer_ = {};
  if (!tooltipNode_) return;
  tooltipTimer_ = scene_.scheduler_.after(tooltipDelay, [this] {
    if (!tooltipNode_ || !pointer_ || gesture_ || !tooltipNode_->attributes.interaction) return;
    setTooltip(Tooltip{tooltipNode_->attributes.interaction->tooltip, *pointer_, surfaceOf(*tooltipNode_)});
  });
}

void SceneInput::setTooltip(std::optional<Tooltip> tooltip) {
  if (tooltip.has_value() == tooltip_.has_value()) return;
  tooltip_ = std::move(tooltip);
  withAnimation(easeOut(0.15), [this] { tooltipChanges_.notifyObservers(); });
}

}  // namespace tarnwick::ui
