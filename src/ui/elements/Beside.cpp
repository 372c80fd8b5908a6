#include "ui/Beside.h"

#include <algorithm>

#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class BesideElement : public Element {
 public:
  BesideElement(Point point, const Rect& surface) : point_(point), surface_(surface) {}
  static constexpr ElementKind itsKind{"Beside"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const BesideElement&>(other);
    return same.point_ == point_ && same.surface_ == surface_;
  }
  Measured measure(Node&, Proposal proposal) const override {
    return {{proposal.width.value_or(0), proposal.height.value_or(0)}};
  }
  void place(Node& node, Size) const override {
    Node* content = node.firstChild();
    if (!content) return;
    constexpr double below = 18, above = 8;
    // Room for the surface's round corners.
    constexpr double margin = 12;
    const Size own = content->measure({}).size;
    const double leftmost = surface_.x + margin, rightmost = surface_.right() - margin - own.width;
    const double x = std::clamp(point_.x - own.width / 2, leftmost, std::max(leftmost, rightmost));
    double y = point_.y + below;
    if (y + own.height + margin > surface_.bottom()) y = point_.y - own.height - above;
    content->place({x, std::max(surface_.y, y), own.width, own.height});
  }

 private:
  Point point_;
  Rect surface_;
};

}  // namespace

View Beside(Point point, const Rect& surface, View content) {
  return View(std::make_shared<BesideElement>(point, surface), {std::move(content)});
}

}  // namespace tarnwick::ui
