#include <algorithm>

#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class AspectRatioElement : public Element {
 public:
  explicit AspectRatioElement(double ratio) : ratio_(ratio) {}
  static constexpr ElementKind itsKind{"AspectRatio"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const AspectRatioElement&>(other).ratio_ == ratio_;
  }
  Measured measure(Node& node, Proposal proposal) const override;

 private:
  double ratio_;
};

Measured AspectRatioElement::measure(Node& node, Proposal proposal) const {
  if (!node.firstChild()) return {};
  if (!proposal.width && !proposal.height) return node.firstChild()->measure(proposal);
  const double width = proposal.width.value_or(infinity), height = proposal.height.value_or(infinity);
  const double fitted = std::min(width, height * ratio_);
  return {{fitted, fitted / ratio_}};
}

}  // namespace

View View::aspectRatio(double ratio) const { return inside(std::make_shared<AspectRatioElement>(ratio)); }

}  // namespace tarnwick::ui
