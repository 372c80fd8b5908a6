#pragma once
#include <optional>
#include <utility>
#include <vector>

#include "ui/Shape.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {

/// A shape, filled or stroked.
class ShapeElement : public Element {
 public:
  ShapeElement(Shape shape, Paint paint, std::optional<StrokeStyle> stroke)
      : shape_(std::move(shape)), paint_(std::move(paint)), stroke_(std::move(stroke)) {}
  static constexpr ElementKind itsKind{"Shape"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override;
  std::vector<double> animatedValues(const Environment&) const override;
  void draw(DrawContext& context) const override;
  bool draws() const override { return true; }
  bool affectsLayout(const Element&) const override { return false; }
  std::optional<Shape> outline(const std::vector<double>& values) const override;
  bool isOpaque(const std::vector<double>& values) const override;
  double overflow() const override { return stroke_ && !stroke_->inside ? stroke_->width / 2 : 0; }

 private:
  /// The shape with its animated numbers as presented.
  Shape presented(const std::vector<double>& values) const;

  Shape shape_;
  Paint paint_;
  std::optional<StrokeStyle> stroke_;
};

}  // namespace tarnwick::ui
