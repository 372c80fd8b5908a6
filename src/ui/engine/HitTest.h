#pragma once
#include <functional>
#include <vector>

#include "base/Geometry.h"

namespace tarnwick::ui {

class Node;

/// What of a presented tree lies under a point of the scene.
namespace hitTest {

/// Those of the nodes at `point` that are wanted, from the front to the back: what is inside of a node before
/// the node. `held`, which may be null, keeps the area that it has without its effects, so that a button that
/// shrinks while it is pressed stays under the pointer.
std::vector<Node*> at(
    Node& root, Point point, const std::function<bool(const Node&)>& wanted, const Node* held = nullptr);

/// The frontmost of the wanted nodes that will be at `point` when all motion is over; null: none.
Node* atRest(Node& root, Point point, const std::function<bool(const Node&)>& wanted);

/// The point in the node's own coordinates.
Point inNode(const Node& node, Point point);

/// Whether the node takes part in what pointer and keyboard do: it does not leave, and neither it nor a node
/// around it is switched off.
bool takesInput(const Node& node);

}  // namespace hitTest
}  // namespace tarnwick::ui
