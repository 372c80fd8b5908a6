#include "ui/engine/SceneInput.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "ui/engine/Drawing.h"
#include "ui/engine/Node.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

/// Seconds that the pointer rests before a tooltip shows, and within which a second tap makes a double one.
constexpr double tooltipDelay = 0.7;
constexpr double doubleTapTime = 0.4;

bool takesPress(const Node& node) {
  const auto& i = node.attributes.interaction;
  return i && (i->onTap || i->onDoubleTap || i->onPress || i->onDrag);
}

}  // namespace

Point SceneInput::inNode(const Node& node, Point point) const {
  const QPointF p = node.transform.inverted().map(QPointF(point.x, point.y));
  return {p.x(), p.y()};
}

/// The same without the node's own effects.
Point SceneInput::inFrame(const Node& node, Point point) const {
  if (!node.parent) return point;
  const QPointF p = node.parent->contentTransform.inverted().map(QPointF(point.x, point.y));
  return Point{p.x(), p.y()} - node.presentedFrame().origin();
}

/// The frontmost node at `point` that is wanted.
Node* SceneInput::hit(Node& node, Point point, const std::function<bool(const Node&)>& wanted) const {
  const auto& interaction = node.attributes.interaction;
  if (interaction && interaction->disabled) return nullptr;
  if (node.isLeaving || std::abs(node.transform.determinant()) < 1e-6) return nullptr;
  // A button that shrinks while it is pressed keeps its area.
  const Point here = &node == pressed_ ? inFrame(node, point) : inNode(node, point);
  const Rect box{0, 0, node.presentedSize.width, node.presentedSize.height};
  const bool clips = node.attributes.clip || node.element->clips();
  if (clips && !box.contains(here)) return nullptr;
  for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
    if (Node* found = hit(**child, point, wanted)) return found;
  }
  if (!wanted(node) || !box.contains(here)) return nullptr;
  if (interaction && interaction->hitShape &&
      !outline(*interaction->hitShape, box.size()).contains(QPointF(here.x, here.y))) {
    return nullptr;
  }
  return &node;
}

void SceneInput::moved(Point point) {
  pointer_ = point;
  updateHover();
  awaitTooltip();
  if (!pressed_) return;
  // A copy: the handlers may make the view anew.
  const auto interaction = pressed_->attributes.interaction;
  if (!interaction) return;
  if (interaction->onDrag) {
    const Point way = point - pressedAt_;
    if (!dragging_ && std::hypot(way.x, way.y) >= interaction->dragDistance) dragging_ = true;
    if (dragging_) {
      interaction->onDrag({inNode(*pressed_, pressedAt_), inNode(*pressed_, point), pressed_->presentedSize});
    }
  }
  if (pressed_ && interaction->onPress) {
    const bool over = hit(*scene_.root_, point, takesPress) == pressed_;
    if (over != pressShown_) {
      pressShown_ = over;
      interaction->onPress(over);
    }
  }
}

void SceneInput::left() {
  pointer_.reset();
  updateHover();
}

void SceneInput::pressed(Point point) {
  pointer_ = point;
  setTooltip(std::nullopt);
  tooltipTimer_ = {};
  updateHover();
  pressed_ = hit(*scene_.root_, point, takesPress);
  pressedAt_ = point;
  dragging_ = false;
  if (!pressed_) return;
  // A copy: the handlers may make the view anew, or end it.
  const auto interaction = pressed_->attributes.interaction;
  if (interaction->onPress) {
    pressShown_ = true;
    interaction->onPress(true);
  }
  if (interaction->onDrag && interaction->dragDistance == 0 && pressed_) {
    dragging_ = true;
    const Point here = inNode(*pressed_, point);
    interaction->onDrag({here, here, pressed_->presentedSize});
  }
}

void SceneInput::released(Point point) {
  pointer_ = point;
  if (!pressed_ || !pressed_->attributes.interaction) {
    pressed_ = nullptr;
    return;
  }
  const bool over = hit(*scene_.root_, point, takesPress) == pressed_;
  Node* const node = std::exchange(pressed_, nullptr);
  const unsigned long serial = node->serial;
  const auto interaction = node->attributes.interaction;
  const bool dragged = std::exchange(dragging_, false);
  const DragValue drag{inNode(*node, pressedAt_), inNode(*node, point), node->presentedSize};
  if (interaction->onPress && std::exchange(pressShown_, false)) interaction->onPress(false);
  if (dragged && interaction->onDragEnd) interaction->onDragEnd(drag);
  if (!over || dragged) return;

  const double now = scene_.scheduler_.uptime();
  if (interaction->onDoubleTap && lastTapped_ == serial && now - lastTapTime_ < doubleTapTime) {
    lastTapped_ = 0;
    interaction->onDoubleTap();
    return;
  }
  lastTapped_ = serial;
  lastTapTime_ = now;
  if (interaction->onTap) interaction->onTap();
}

bool SceneInput::scrolled(Point point, Point delta) {
  Node* node = hit(*scene_.root_, point,
                   [&](const Node& candidate) { return candidate.element->canScroll(candidate, delta); });
  if (!node) return false;
  node->element->scroll(*node, delta);
  scene_.scrolled();
  return true;
}

/// The content may have moved under a resting pointer.
void SceneInput::sceneMoved() {
  if (tooltip_ && !tooltipNode_) setTooltip(std::nullopt);
  if (pointer_) updateHover();
}

void SceneInput::updateHover() {
  std::vector<Node*> inside;
  if (pointer_) {
    Node* front =
        hit(*scene_.root_, *pointer_, [](const Node& node) { return bool(node.attributes.interaction); });
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
    if (!tooltipNode_ || !pointer_ || pressed_ || !tooltipNode_->attributes.interaction) return;
    setTooltip(Tooltip{tooltipNode_->attributes.interaction->tooltip, *pointer_, surfaceOf(*tooltipNode_)});
  });
}

void SceneInput::setTooltip(std::optional<Tooltip> tooltip) {
  if (tooltip.has_value() == tooltip_.has_value()) return;
  tooltip_ = std::move(tooltip);
  withAnimation(easeOut(0.15), [this] { tooltipChanges_.notifyObservers(); });
}

}  // namespace tarnwick::ui
