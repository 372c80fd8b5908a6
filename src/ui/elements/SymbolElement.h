#pragma once
#include <string>

#include "ui/engine/Element.h"

namespace tarnwick::ui {

/// One glyph of the symbols' font.
class SymbolElement : public Element {
 public:
  explicit SymbolElement(std::string name) : name_(std::move(name)) {}
  static constexpr ElementKind itsKind{"Symbol"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const SymbolElement&>(other).name_ == name_;
  }
  std::vector<double> animatedValues(const Environment& environment) const override;
  Measured measure(Node& node, Proposal proposal) const override;
  void draw(DrawContext& context) const override;
  bool draws() const override { return true; }
  bool affectsLayout(const Element&) const override { return false; }
  std::string content() const override { return name_; }

 private:
  void drawGlyph(DrawContext& context, double scale, double opacity) const;
  std::string name_;
};

}  // namespace tarnwick::ui
