#include <functional>
#include <optional>

#include "ui/engine/Node.h"

namespace tarnwick::ui {
namespace {

struct GeometryState : ElementState {
  /// The size that the content was made for.
  std::optional<Size> size;
};

/// Takes all that is offered and shows what its body makes of that size.
class GeometryElement : public Element {
 public:
  explicit GeometryElement(std::function<View(Size)> body) : body_(std::move(body)) {}
  static constexpr ElementKind itsKind{"GeometryReader"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return false; }
  bool affectsLayout(const Element&) const override { return false; }
  std::unique_ptr<ElementState> makeState() const override { return std::make_unique<GeometryState>(); }

  void build(Node& node, const Views&, Content& content) const override {
    const auto& size = node.state<GeometryState>().size;
    if (size) content.show({body_(*size)});
  }
  void buildForLayout(Node& node, Content& content) const override {
    auto& state = node.state<GeometryState>();
    if (state.size == node.frame.size()) return;
    state.size = node.frame.size();
    content.show({body_(*state.size)});
  }

  Measured measure(Node&, Proposal proposal) const override {
    return {{proposal.width.value_or(10), proposal.height.value_or(10)}};
  }
  void place(Node& node, Size size) const override {
    if (Node* child = node.firstChild()) {
      const Size own = child->measure({size.width, size.height}).size;
      child->place({0, 0, own.width, own.height});
    }
  }

 private:
  std::function<View(Size)> body_;
};

}  // namespace

View GeometryReader(std::function<View(Size)> body) {
  return View(std::make_shared<GeometryElement>(std::move(body)));
}

}  // namespace tarnwick::ui
