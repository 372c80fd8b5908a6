#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

/// A main child and a second one behind or before it, in slots 0 and 1 from back to front.
class LayerElement : public Element {
 public:
  enum class Side { behind, before };
  LayerElement(UnitPoint align, Side side) : align_(align), side_(side) {}
  static constexpr ElementKind backgroundKind{"Background"}, overlayKind{"Overlay"};
  const ElementKind& kind() const override { return side_ == Side::behind ? backgroundKind : overlayKind; }
  bool equals(const Element& other) const override {
    return static_cast<const LayerElement&>(other).align_ == align_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;
  bool hasFixedSlots() const override { return true; }

 private:
  Node* main(Node& node) const;
  UnitPoint align_;
  Side side_;
};

Node* LayerElement::main(Node& node) const { return node.child(side_ == Side::behind ? 1 : 0); }

Measured LayerElement::measure(Node& node, Proposal proposal) const {
  Node* child = main(node);
  return child ? child->measure(proposal) : Measured{};
}

void LayerElement::place(Node& node, Size size) const {
  for (const auto& child : node.children) {
    if (child.get() == main(node)) {
      child->place({0, 0, size.width, size.height});
    } else {
      child->place(aligned(child->measure({size.width, size.height}).size, size, align_), align_);
    }
  }
}

}  // namespace

View View::background(View behind, UnitPoint align) const {
  if (isEmpty()) return *this;
  return View(std::make_shared<LayerElement>(align, LayerElement::Side::behind), {std::move(behind), *this});
}
View View::overlay(View before, UnitPoint align) const {
  if (isEmpty()) return *this;
  return View(std::make_shared<LayerElement>(align, LayerElement::Side::before), {*this, std::move(before)});
}

}  // namespace tarnwick::ui
