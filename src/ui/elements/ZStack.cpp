#include <algorithm>

#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class ZStackElement : public Element {
 public:
  explicit ZStackElement(UnitPoint align) : align_(align) {}
  static constexpr ElementKind itsKind{"ZStack"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const ZStackElement&>(other).align_ == align_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  UnitPoint align_;
};

Measured ZStackElement::measure(Node& node, Proposal proposal) const {
  Measured answer;
  for (const auto& child : node.children) {
    const Measured part = child->measure(proposal);
    answer.size = {
        std::max(answer.size.width, part.size.width), std::max(answer.size.height, part.size.height)};
    if (!answer.baseline) answer.baseline = part.baseline;
  }
  return answer;
}

void ZStackElement::place(Node& node, Size size) const {
  for (const auto& child : node.children) {
    child->place(aligned(child->measure({size.width, size.height}).size, size, align_), align_);
  }
}

}  // namespace

View ZStack(UnitPoint align, ViewList children) {
  return View(std::make_shared<ZStackElement>(align), std::move(children.views));
}

}  // namespace tarnwick::ui
