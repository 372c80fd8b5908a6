#include "ui/engine/HitTest.h"

#include <cmath>

#include "ui/engine/Drawing.h"

namespace tarnwick::ui {
namespace {

Rect boxOf(const Node& node) { return {0, 0, node.presentedSize.width, node.presentedSize.height}; }

/// The point in the node's frame, its own effects left aside.
Point inFrame(const Node& node, Point point) {
  if (!node.parent) return point;
  const QPointF p = node.parent->contentTransform.inverted().map(QPointF(point.x, point.y));
  return Point{p.x(), p.y()} - node.presentedFrame().origin();
}

}  // namespace

Point HitTest::inNode(const Node& node, Point point) {
  const QPointF p = node.transform.inverted().map(QPointF(point.x, point.y));
  return {p.x(), p.y()};
}

Point HitTest::here(const Node& node, Point point) const {
  return held_(node) ? inFrame(node, point) : inNode(node, point);
}

bool HitTest::covers(const Node& node, Point point) const {
  const Point at = here(node, point);
  if (!boxOf(node).contains(at)) return false;
  const auto& interaction = node.attributes.interaction;
  return !interaction || !interaction->hitShape ||
         outline(*interaction->hitShape, node.presentedSize).contains(QPointF(at.x, at.y));
}

Node* HitTest::front(Node& node, Point point, const Wanted& wanted) const {
  const auto& interaction = node.attributes.interaction;
  if (interaction && interaction->disabled) return nullptr;
  if (node.isLeaving || std::abs(node.transform.determinant()) < 1e-6) return nullptr;
  const bool clips = node.attributes.clip || node.element->clips();
  if (clips && !boxOf(node).contains(here(node, point))) return nullptr;
  for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
    if (Node* found = front(**child, point, wanted)) return found;
  }
  return wanted(node) && covers(node, point) ? &node : nullptr;
}

std::vector<Node*> HitTest::chain(Point point, const Wanted& wanted) const {
  std::vector<Node*> chain;
  for (Node* node = front(point, wanted); node; node = node->parent) {
    if (wanted(*node) && covers(*node, point)) chain.push_back(node);
  }
  return chain;
}

}  // namespace tarnwick::ui
