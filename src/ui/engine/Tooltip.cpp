#include "ui/engine/Tooltip.h"

#include <algorithm>

#include "ui/Dynamic.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

/// Puts its child below a point, or above it where there is no room on the surface.
class BesidePoint : public Element {
 public:
  BesidePoint(Point point, const Rect& surface) : point_(point), surface_(surface) {}
  static constexpr ElementKind itsKind{"BesidePoint"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const BesidePoint&>(other);
    return same.point_ == point_ && same.surface_ == surface_;
  }
  Measured measure(Node&, Proposal proposal) const override {
    return {{proposal.width.value_or(0), proposal.height.value_or(0)}};
  }
  void place(Node& node, Size) const override {
    constexpr double below = 18, above = 8;
    // Room for the surface's round corners.
    constexpr double margin = 12;
    const Size own = node.firstChild()->measure({}).size;
    const double leftmost = surface_.x + margin, rightmost = surface_.right() - margin - own.width;
    const double x = std::clamp(point_.x - own.width / 2, leftmost, std::max(leftmost, rightmost));
    double y = point_.y + below;
    if (y + own.height + margin > surface_.bottom()) y = point_.y - own.height - above;
    node.firstChild()->place({x, std::max(surface_.y, y), own.width, own.height});
  }

 private:
  Point point_;
  Rect surface_;
};

}  // namespace

View tooltipView(const SceneInput& input) {
  return observing({&input.tooltipChanges()}, [&input] {
    if (!input.tooltip()) return View();
    View bubble = Text(input.tooltip()->text)
                      .font({11, Weight::medium})
                      .foreground(white(0.92))
                      .padding(Edge::horizontal, 8)
                      .padding(Edge::vertical, 4)
                      .background(RoundedRectangle(6).fill(Color{0.17, 0.17, 0.18, 0.97}))
                      .overlay(RoundedRectangle(6).stroke(white(0.12), {.width = 1, .inside = true}));
    return View(std::make_shared<BesidePoint>(input.tooltip()->point, input.tooltip()->surface),
                {std::move(bubble)})
        .allowsHitTesting(false);
  });
}

}  // namespace tarnwick::ui
