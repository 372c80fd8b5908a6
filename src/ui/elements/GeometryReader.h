#pragma once
#include <functional>

#include "ui/View.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {

/// Takes all that is offered and shows what its body makes of that size. The scene calls the body when a
/// layout has given it another size.
class GeometryElement : public Element {
 public:
  explicit GeometryElement(std::function<View(Size)> body) : body_(std::move(body)) {}
  static constexpr ElementKind itsKind{"GeometryReader"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return false; }
  bool affectsLayout(const Element&) const override { return false; }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;
  View build(Size size) const { return body_(size); }

 private:
  std::function<View(Size)> body_;
};

}  // namespace tarnwick::ui
