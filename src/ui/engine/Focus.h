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
  /// Leaves a view that has gone: for what has taken its place among those that arrow keys lead to.
  void forgetVanished();
  /// The view that keys and focus stay inside of: the frontmost `modal` one, or all.
  Node& scope() const;
  /// Has the windows on longer contents around a view scroll until it can be seen.
  void reveal(Node& node);

 private:
  std::vector<Node*> controls() const;
  std::vector<Node*> members(const Node* group) const;
  void tell(bool focused);
  void showRing(bool shown);

  Scene& scene_;
  WeakNode node_;
  /// Those among which arrow keys move from there, and its place among them.
  WeakNode group_;
  size_t place_ = 0;
  bool active_ = false, shown_ = false;
};

}  // namespace tarnwick::ui
