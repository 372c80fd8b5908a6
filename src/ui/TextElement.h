#pragma once
#include <string>

#include "ui/Element.h"

class QFont;

namespace tarnwick::ui {

/// One line of text.
class TextElement : public Element {
 public:
  explicit TextElement(std::string text) : text_(std::move(text)) {}
  std::string_view kind() const override { return "Text"; }
  bool equals(const Element& other) const override;
  std::vector<double> animatedValues(const Environment& environment) const override;
  Measured measure(Node& node, Proposal proposal) const override;
  void draw(DrawContext& context) const override;
  bool draws() const override { return true; }
  /// Glyphs may lean over the edges of their cells.
  double overflow() const override { return 2; }
  const std::string& text() const { return text_; }

 private:
  void prepare(DrawContext& context, const QFont& font) const;
  void drawLine(DrawContext& context, double space) const;
  void drawRolling(DrawContext& context, const TextElement& before) const;

  std::string text_;
};

}  // namespace tarnwick::ui
