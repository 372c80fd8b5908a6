#pragma once
#include <optional>
#include <string>

#include "base/ObservableObject.h"
#include "base/Scheduler.h"
#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {

class Scene;

/// The one tooltip of a scene: it shows what the view under a resting pointer is.
class Tooltip {
 public:
  explicit Tooltip(Scene& scene) : scene_(scene) {}

  /// The pointer has moved to `point`, on a view with a tooltip or, where it is null, on none.
  void pointerMoved(Node* node, Point point);
  /// The view under the resting pointer is another one now.
  void viewChanged(Node* node, Point point);
  void hide();

  /// Where it is, as presented; none while it does not show.
  std::optional<Rect> frame() const;
  /// The bubble, in front of the whole scene.
  View view() const;

 private:
  struct Shown {
    std::string text;
    Point point;
    /// What it stays on.
    Rect surface;
  };
  void show(std::optional<Shown> shown);
  Rect surfaceOf(const Node& node) const;

  Scene& scene_;
  WeakNode node_;
  std::optional<Shown> shown_;
  Task timer_;
  ObservableObject changes_;
};

}  // namespace tarnwick::ui
