#include "ui/elements/GeometryReader.h"

#include "ui/engine/Node.h"

namespace tarnwick::ui {

Measured GeometryElement::measure(Node&, Proposal proposal) const {
  return {{proposal.width.value_or(10), proposal.height.value_or(10)}};
}

void GeometryElement::place(Node& node, Size size) const {
  if (Node* child = node.firstChild()) {
    const Size own = child->measure({size.width, size.height}).size;
    child->place({0, 0, own.width, own.height});
  }
}

View GeometryReader(std::function<View(Size)> body) {
  return View(std::make_shared<GeometryElement>(std::move(body)));
}

}  // namespace tarnwick::ui
