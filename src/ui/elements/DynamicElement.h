#pragma once
#include "ui/Dynamic.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {

/// Stands for the view that its body makes.
class DynamicElement : public WrapperElement {
 public:
  explicit DynamicElement(DynamicBody body) : body_(std::move(body)) {}
  static constexpr ElementKind itsKind{"Dynamic"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return false; }
  bool affectsLayout(const Element&) const override { return false; }
  const DynamicBody& body() const { return body_; }

 private:
  DynamicBody body_;
};

}  // namespace tarnwick::ui
