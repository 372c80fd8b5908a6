#include <algorithm>

#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class PaddingElement : public Element {
 public:
  PaddingElement(Edge edges, double length) : edges_(edges), length_(length) {}
  static constexpr ElementKind itsKind{"Padding"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const PaddingElement&>(other);
    return same.edges_ == edges_ && same.length_ == length_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  double inset(Edge edge) const { return has(edges_, edge) ? length_ : 0; }
  Edge edges_;
  double length_;
};

Measured PaddingElement::measure(Node& node, Proposal proposal) const {
  Node* child = node.firstChild();
  if (!child) return {};
  const double dx = inset(Edge::leading) + inset(Edge::trailing), dy = inset(Edge::top) + inset(Edge::bottom);
  const auto less = [](std::optional<double> length, double by) {
    return length ? std::optional(std::max(0.0, *length - by)) : length;
  };
  Measured answer = child->measure({less(proposal.width, dx), less(proposal.height, dy)});
  answer.size = {answer.size.width + dx, answer.size.height + dy};
  if (answer.baseline) *answer.baseline += inset(Edge::top);
  return answer;
}

void PaddingElement::place(Node& node, Size size) const {
  if (Node* child = node.firstChild()) {
    child->place({inset(Edge::leading), inset(Edge::top),
        std::max(0.0, size.width - inset(Edge::leading) - inset(Edge::trailing)),
        std::max(0.0, size.height - inset(Edge::top) - inset(Edge::bottom))});
  }
}

}  // namespace

View View::padding(double length) const { return padding(Edge::all, length); }
View View::padding(Edge edges, double length) const {
  return inside(std::make_shared<PaddingElement>(edges, length));
}

}  // namespace tarnwick::ui
