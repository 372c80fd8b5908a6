#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "base/Geometry.h"
#include "base/ObservableObject.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {

class Scene;

/// Which control of a scene has the keyboard, and what its keys do.
///
/// A key goes to the control and then to the views around it, from the inside out, until one takes it. What
/// is left moves the focus: Tab and Shift+Tab in the order of drawing, the arrows to the next control in
/// their direction. Enter and Space act as a click does.
class KeyboardFocus {
 public:
  explicit KeyboardFocus(Scene& scene) : scene_(scene) {}

  /// @return whether a view took it
  bool key(const KeyEvent& event);
  /// The control that has the focus; null where none has.
  Node* focused() const;
  /// @param shown with a ring around it, as when the keyboard moves the focus
  void moveTo(Node* control, bool shown);
  /// The pointer pressed there: the focus follows without a ring.
  void pressedOn(Node& node);
  /// The window has lost the keyboard: no ring.
  void hideRing();

  /// The frame of the focused control with the ring around it, in points of the scene.
  const std::optional<Rect>& ring() const {
    ringChanges_.noteRead();
    return ring_;
  }

 private:
  friend class SceneInput;
  void sceneMoved();
  bool offer(const KeyEvent& event) const;
  bool step(int direction);
  bool move(Key arrow);
  /// Those that can be seen, in the order of drawing.
  std::vector<Node*> controls() const;
  void scrollIntoView(Node& control);

  Scene& scene_;
  WeakNode focused_;
  bool shown_ = false;
  std::optional<Rect> ring_;
  ObservableObject ringChanges_;
};

}  // namespace tarnwick::ui
