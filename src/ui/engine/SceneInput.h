#pragma once
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Geometry.h"
#include "base/ObservableObject.h"
#include "base/Scheduler.h"
#include "ui/engine/HitTest.h"
#include "ui/engine/KeyboardFocus.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {

class Scene;

/// Brings the pointer and the keys to the views of a scene. Points are those of the scene.
///
/// What the pointer does at a place is offered to the frontmost view there and then to the views around it,
/// from the inside out, until one takes it.
class SceneInput {
 public:
  explicit SceneInput(Scene& scene) : scene_(scene), focus_(scene) {}

  void moved(Point point);
  void left();
  /// While one button is held the others do nothing.
  void pressed(Point point, PointerButton button = PointerButton::left);
  void released(Point point, PointerButton button = PointerButton::left, Modifiers modifiers = {});
  /// The pointer has been taken away while a button was held: the release will not be told.
  void cancelled();
  /// Scrolls the innermost view at `point` that has a way to go. A wheel that turns one way only scrolls
  /// along whichever axis there is. @return false where there is none.
  bool scrolled(Point point, Point delta, bool wheel = false);
  /// @return whether a view took the key
  bool key(const KeyEvent& event) { return focus_.key(event); }

  KeyboardFocus& focus() { return focus_; }

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
  /// A view that a held button is offered to.
  struct Grip {
    WeakNode node;
    /// As of the last look at the view, which may be gone since.
    std::shared_ptr<const Interaction> interaction;
    bool pressShown = false;
    std::optional<DragValue> drag = {};
  };
  struct Gesture {
    PointerButton button;
    Point start;
    /// From the inside out.
    std::vector<Grip> grips;
    bool dragging = false;
  };
  struct Click {
    std::shared_ptr<const Interaction> interaction;
    PointerEvent event;
  };

  HitTest hits() const;
  void dragTo(Point point);
  void showPresses(Point point);
  bool take(const Click& click);
  static void breakOff(const Grip& grip);
  void sceneMoved();
  void updateHover();
  void awaitTooltip();
  void setTooltip(std::optional<Tooltip> tooltip);
  Rect surfaceOf(const Node& node) const;

  Scene& scene_;
  KeyboardFocus focus_;
  std::optional<Point> pointer_;
  std::vector<WeakNode> hovered_;
  std::optional<Gesture> gesture_;
  struct {
    /// The view's serial number.
    unsigned long view = 0;
    PointerButton button = PointerButton::left;
    double time = 0;
    int count = 0;
  } lastClick_;
  WeakNode tooltipNode_;
  std::optional<Tooltip> tooltip_;
  Task tooltipTimer_;
  ObservableObject tooltipChanges_;
};

}  // namespace tarnwick::ui
