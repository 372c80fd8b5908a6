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

void collect(Node& node, Point point, const std::function<bool(const Node&)>& wanted, const Node* held,
    std::vector<Node*>& found) {
  const auto& interaction = node.attributes.interaction;
  if (node.isLeaving || (interaction && interaction->disabled)) return;
  if (std::abs(node.transform.determinant()) < 1e-6) return;
  const Point here = &node == held ? inFrame(node, point) : inNode(node, point);
  const Rect box{0, 0, node.presentedSize.width, node.presentedSize.height};
  const bool inside = box.contains(here);
  if (!inside && (node.attributes.clip || node.element->clips())) return;
  for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
    collect(**child, point, wanted, held, found);
  }
  if (!inside || !wanted(node)) return;
  if (interaction && interaction->hitShape &&
      !outline(*interaction->hitShape, box.size()).contains(QPointF(here.x, here.y))) {
    return;
  }
  found.push_back(&node);
}

}  // namespace

std::vector<Node*> at(
    Node& root, Point point, const std::function<bool(const Node&)>& wanted, const Node* held) {
  std::vector<Node*> found;
  collect(root, point, wanted, held, found);
  return found;
}

Point inNode(const Node& node, Point point) {
  const QPointF p = node.transform.inverted().map(QPointF(point.x, point.y));
  return {p.x(), p.y()};
}

bool takesInput(const Node& node) {
  for (const Node* n = &node; n; n = n->parent) {
    if (n->isLeaving || (n->attributes.interaction && n->attributes.interaction->disabled)) return false;
  }
  return true;
}

}  // namespace tarnwick::ui::hitTest
