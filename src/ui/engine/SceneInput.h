#pragma once
#include <optional>
#include <vector>

#include "ui/Events.h"
#include "ui/engine/Focus.h"
#include "ui/engine/Gestures.h"
#include "ui/engine/Menus.h"
#include "ui/engine/Tooltip.h"

namespace tarnwick::ui {

class Scene;

/// Brings what pointer and keyboard do to the views of a scene. Points are those of the scene.
class SceneInput {
 public:
  explicit SceneInput(Scene& scene);

  void moved(Point point, Modifiers modifiers = {});
  /// The pointer has left the scene.
  void left();
  void pressed(Point point, PointerButton button = PointerButton::primary, Modifiers modifiers = {});
  void released(Point point, PointerButton button = PointerButton::primary, Modifiers modifiers = {});
  /// Something else has taken the pointer: what a press began ends without effect.
  void cancelled() { gestures_.cancel(); }
  /// Points that a click of a wheel scrolls.
  static constexpr double pointsPerClick = 48;
  /// Turns the control at `point` that can be set to a value, up and to the right for more. Else it scrolls
  /// the innermost content at `point` that has a way to go. What no content can follow along one axis
  /// a `wheel`, which has but one, scrolls along the other. @return false where there is nothing to scroll.
  bool scrolled(Point point, Point delta, bool wheel = false);
  /// Whether there is content at `point` that has a way to go by `delta`.
  bool canScroll(Point point, Point delta) const;

  /// A key went down. @return false when nobody has a use for it.
  bool key(const KeyEvent& event);
  /// The window has come by the keyboard, or lost it.
  void keyboardChanged(bool has);

  /// The view with the keyboard's focus; null: none.
  const Node* focused() const { return focus_.node(); }
  /// Gives it, as if by a key, to the first control in the view of that id. @return false where there is
  /// none
  bool focus(const std::string& id);
  /// Scrolls until the view of that id can be seen. @return false where there is none
  bool reveal(const std::string& id);
  /// Gives it the focus. `shown`: as if by a key.
  void focus(Node& node, bool shown) { focus_.moveTo(&node, shown); }

  Menus& menus() { return menus_; }
  /// A menu has opened; `byKey`: the focus goes to its first item.
  void focusMenu(bool byKey);

 private:
  friend class Scene;
  void sceneMoved();
  Node* updateHover();
  void setCursor(Cursor cursor);
  Node* scrollable(Point point, Point delta) const;
  bool openMenu(Node* focused, const KeyEvent& event);
  bool offer(const KeyEvent& event, Node* focused);
  bool operate(Node& control, Key key);
  void turn(Node& control, double distance);

  Scene& scene_;
  std::optional<Point> pointer_;
  std::vector<WeakNode> hovered_;
  Gestures gestures_;
  Focus focus_;
  Tooltip tooltip_;
  Menus menus_;
  Cursor cursor_ = Cursor::arrow;
};

}  // namespace tarnwick::ui
