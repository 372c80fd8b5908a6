#pragma once
#include <vector>

#include "ui/Events.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {

class Scene;

/// Where the keyboard's focus is among the views of a scene, and how keys move it.
class Focus {
 public:
  explicit Focus(Scene& scene) : scene_(scene) {}

  /// The view that has it; null: none.
  Node* node() const;
  /// Gives it to a view, or to none. `shown`: with a ring, because keys moved it there.
  void moveTo(Node* node, bool shown);
  /// The window has the keyboard, or not: then no ring is to be seen.
  void setActive(bool active);
  /// To the next or previous control; those among which arrow keys move count as one.
  bool step(bool forward);
  /// Among the controls in the same `arrowKeys`: to the neighbour, the first or the last one.
  bool move(const KeyEvent& event);
  /// Ends with a view that has gone.
  void forgetVanished();
  /// The view that keys and focus stay inside of: the frontmost `modal` one, or all.
  Node& scope() const;

 private:
  std::vector<Node*> controls() const;
  void tell(bool focused);
  void showRing(bool shown);
  void reveal(Node& node);

  Scene& scene_;
  WeakNode node_;
  bool active_ = false, shown_ = false;
};

}  // namespace tarnwick::ui
