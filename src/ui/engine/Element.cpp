#include "ui/engine/Element.h"

#include <algorithm>
#include <cmath>

#include "ui/engine/Node.h"

namespace tarnwick::ui {

bool equal(const Element& a, const Element& b) { return &a == &b || (a.kind() == b.kind() && a.equals(b)); }

Measured Element::measure(Node& node, Proposal proposal) const {
  if (Node* child = node.firstChild()) return child->measure(proposal);
  if (!node.leaving.empty()) return {};
  const auto offered = [](std::optional<double> length) {
    return length && std::isfinite(*length) ? *length : length ? 1e6 : 10;
  };
  return {{offered(proposal.width), offered(proposal.height)}};
}

Measured WrapperElement::measure(Node& node, Proposal proposal) const {
  Node* child = node.firstChild();
  return child ? child->measure(proposal) : Measured{};
}

bool WrapperElement::isNothing(const Node& node) const {
  return std::ranges::all_of(
      node.children, [](const auto& child) { return child->element->isNothing(*child); });
}

void Element::place(Node& node, Size size) const {
  for (const auto& child : node.children) child->place({0, 0, size.width, size.height});
}

}  // namespace tarnwick::ui
