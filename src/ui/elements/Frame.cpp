#include <algorithm>

#include "ui/View.h"
#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

class FrameElement : public Element {
 public:
  explicit FrameElement(const FrameOptions& options) : options_(options) {}
  static constexpr ElementKind itsKind{"Frame"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const FrameElement&>(other).options_ == options_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  Proposal inner(Proposal proposal) const;
  FrameOptions options_;
};

Proposal FrameElement::inner(Proposal proposal) const {
  const auto limit =
      [](std::optional<double> fixed, std::optional<double> most, std::optional<double> offered) {
        if (fixed) return fixed;
        if (most && offered) return std::optional(std::min(*most, *offered));
        return offered;
      };
  return {limit(options_.width, options_.maxWidth, proposal.width),
      limit(options_.height, options_.maxHeight, proposal.height)};
}

Measured FrameElement::measure(Node& node, Proposal proposal) const {
  Node* child = node.firstChild();
  const Measured content = child ? child->measure(inner(proposal)) : Measured{};
  const auto own = [](std::optional<double> fixed, std::optional<double> most, std::optional<double> offered,
                       double inside) {
    if (fixed) return *fixed;
    if (most && offered) return std::max(inside, std::min(*most, *offered));
    return inside;
  };
  const Size size{own(options_.width, options_.maxWidth, proposal.width, content.size.width),
      own(options_.height, options_.maxHeight, proposal.height, content.size.height)};
  Measured answer{size};
  if (content.baseline) answer.baseline = *content.baseline + aligned(content.size, size, options_.align).y;
  return answer;
}

void FrameElement::place(Node& node, Size size) const {
  Node* child = node.firstChild();
  if (!child) return;
  const Size content = child->measure(inner({size.width, size.height})).size;
  child->place(aligned(content, size, options_.align), options_.align);
}

}  // namespace

View View::frame(const FrameOptions& options) const {
  return inside(std::make_shared<FrameElement>(options));
}

}  // namespace tarnwick::ui
