#pragma once
#include <functional>

#include "ui/engine/Node.h"

namespace tarnwick::ui {

/// What of a tree of nodes is at a point.
class HitTest {
 public:
  /// @param held whether a view keeps its area while its effects shrink it, as it is held down
  HitTest(Node& root, std::function<bool(const Node&)> held) : root_(root), held_(std::move(held)) {}

  using Wanted = std::function<bool(const Node&)>;
  /// The frontmost node at `point` (in points of the scene) that is wanted; null where there is none.
  Node* front(Point point, const Wanted& wanted) const { return front(root_, point, wanted); }
  /// That one, and those around it that are wanted and at `point`, from the inside out.
  std::vector<Node*> chain(Point point, const Wanted& wanted) const;
  /// The point in the node's own coordinates.
  static Point inNode(const Node& node, Point point);

 private:
  Node* front(Node& node, Point point, const Wanted& wanted) const;
  Point here(const Node& node, Point point) const;
  bool covers(const Node& node, Point point) const;

  Node& root_;
  const std::function<bool(const Node&)> held_;
};

}  // namespace tarnwick::ui
