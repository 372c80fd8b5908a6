#include "ui/engine/HitTest.h"

#include <cmath>

#include "ui/engine/Drawing.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui::hitTest {
namespace {

Point inFrame(const Node& node, Point point) {
  if (!node.parent) return point;
  const QPointF p = node.parent->contentTransform.inverted().map(QPointF(point.x, point.y));
  return Point{p.x(), p.y()} - node.presentedFrame().origin();
}

/// Whether the node, whose size is `size`, is there for a pointer at `here`, in its own coordinates.
bool isUnder(const Node& node, Point here, Size size) {
  const auto& interaction = node.attributes.interaction;
  return Rect{0, 0, size.width, size.height}.contains(here) &&
         (!interaction || !interaction->hitShape ||
             outline(*interaction->hitShape, size).contains(QPointF(here.x, here.y)));
}

bool isOff(const Node& node) {
  return node.isLeaving || (node.attributes.interaction && node.attributes.interaction->disabled);
}

bool cutsOff(const Node& node) { return node.attributes.clip || node.element->clips(); }

void collect(Node& node, Point point, const std::function<bool(const Node&)>& wanted, const Node* held,
    std::vector<Node*>& found) {
  if (isOff(node)) return;
  if (std::abs(node.transform.determinant()) < 1e-6) return;
  const Point here = &node == held ? inFrame(node, point) : inNode(node, point);
  const Size size = node.presentedSize;
  if (cutsOff(node) && !Rect{0, 0, size.width, size.height}.contains(here)) return;
  for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
    collect(**child, point, wanted, held, found);
  }
  if (wanted(node) && isUnder(node, here, size)) found.push_back(&node);
}

}  // namespace

std::vector<Node*> at(
    Node& root, Point point, const std::function<bool(const Node&)>& wanted, const Node* held) {
  std::vector<Node*> found;
  collect(root, point, wanted, held, found);
  return found;
}

Node* atRest(Node& node, Point point, const std::function<bool(const Node&)>& wanted) {
  if (isOff(node)) return nullptr;
  // No scale and no rotation: they show that something is pressed, or that it comes or goes.
  const Point here = point - node.frame.origin() - node.attributes.effects.offset;
  if (cutsOff(node) && !Rect{0, 0, node.frame.width, node.frame.height}.contains(here)) return nullptr;
  const Point content = here + node.element->scrolled(node);
  for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
    if (Node* const found = atRest(**child, content, wanted)) return found;
  }
  return wanted(node) && isUnder(node, here, node.frame.size()) ? &node : nullptr;
}

Point inNode(const Node& node, Point point) {
  const QPointF p = node.transform.inverted().map(QPointF(point.x, point.y));
  return {p.x(), p.y()};
}

bool takesInput(const Node& node) {
  for (const Node* n = &node; n; n = n->parent) {
    if (isOff(*n)) return false;
  }
  return true;
}

}  // namespace tarnwick::ui::hitTest
