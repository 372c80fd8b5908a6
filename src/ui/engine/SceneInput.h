#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/ObservableObject.h"
#include "base/Scheduler.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {

class Scene;

/// Brings the pointer to the views of a scene.
class SceneInput {
 public:
  explicit SceneInput(Scene& scene) : scene_(scene) {}

  void moved(Point point);
  void left();
  void pressed(Point point);
  void released(Point point);
  /// Scrolls the innermost scroll view at `point` that has a way to go. @return false where there is none.
  bool scrolled(Point point, Point delta);

  /// The text of the tooltip on show, where the pointer rests, and the surface that it stays on.
  struct Tooltip {
    std::string text;
    Point point;
    Rect surface;
  };
  const std::optional<Tooltip>& tooltip() const {
    tooltipChanges_.noteRead();
    return tooltip_;
  }

 private:
  friend class Scene;
  void sceneMoved();
  void updateHover();
  void awaitTooltip();
  void setTooltip(std::optional<Tooltip> tooltip);
  Rect surfaceOf(const Node& node) const;
  Node* hit(Node& node, Point point, const std::function<bool(const Node&)>& wanted) const;
  Point inNode(const Node& node, Point point) const;
  Point inFrame(const Node& node, Point point) const;

  Scene& scene_;
  std::optional<Point> pointer_;
  std::vector<WeakNode> hovered_;
  WeakNode pressed_;
  Point pressedAt_;
  bool dragging_ = false;
  bool pressShown_ = false;
  /// The view's serial number.
  unsigned long lastTapped_ = 0;
  double lastTapTime_ = 0;
  WeakNode tooltipNode_;
  std::optional<Tooltip> tooltip_;
  Task tooltipTimer_;
  ObservableObject tooltipChanges_;
};

}  // namespace tarnwick::ui
