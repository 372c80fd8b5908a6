#include "ui/Beside.h"

#include <algorithm>

#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class BesideElement : public Element {
 public:
  explicit BesideElement(const BesideOptions& options) : options_(options) {}
  static constexpr ElementKind itsKind{"Beside"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const BesideElement&>(other).options_ == options_;
  }
  Measured measure(Node&, Proposal proposal) const override {
    return {{proposal.width.value_or(0), proposal.height.value_or(0)}};
  }
  void place(Node& node, Size) const override;

 private:
  BesideOptions options_;
};

void BesideElement::place(Node& node, Size) const {
  Node* content = node.firstChild();
  if (!content) return;
  const auto& [anchor, surface, below, above, margin, align] = options_;
  const Size own = content->measure({}).size;
  const double leftmost = surface.x + margin, rightmost = surface.right() - margin - own.width;
  const double x =
      std::clamp(anchor.x + align * (anchor.width - own.width), leftmost, std::max(leftmost, rightmost));
  const double roomBelow = surface.bottom() - margin - anchor.bottom() - below;
  const double roomAbove = anchor.y - above - surface.y;
  const bool goesBelow = own.height <= roomBelow || roomBelow >= roomAbove;
  const double height = std::min(own.height, std::max(goesBelow ? roomBelow : roomAbove, 0.0));
  content->place({x, goesBelow ? anchor.bottom() + below : anchor.y - above - height, own.width, height});
}

}  // namespace

View Beside(const BesideOptions& options, View content) {
  return View(std::make_shared<BesideElement>(options), {std::move(content)});
}

}  // namespace tarnwick::ui
