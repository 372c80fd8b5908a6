#pragma once
#include "ui/Description.h"

/// The containers and boxes that decorators and stacks are made of (Layout.cpp), and shapes (Shape.cpp).
namespace tarnwick::ui {

class GroupElement : public Element {
 public:
  std::string_view kind() const override { return "Group"; }
  bool equals(const Element&) const override { return true; }
};

/// Keeps the frame that another view handed over: its content is laid out at the final size and drawn scaled
/// to the present one.
class MatchElement : public Element {
 public:
  std::string_view kind() const override { return "Match"; }
  bool equals(const Element&) const override { return true; }
};

class FrameElement : public Element {
 public:
  explicit FrameElement(const FrameOptions& options) : options_(options) {}
  std::string_view kind() const override { return "Frame"; }
  bool equals(const Element& other) const override {
    return static_cast<const FrameElement&>(other).options_ == options_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  Proposal inner(Proposal proposal) const;
  FrameOptions options_;
};

class PaddingElement : public Element {
 public:
  PaddingElement(Edge edges, double length) : edges_(edges), length_(length) {}
  std::string_view kind() const override { return "Padding"; }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const PaddingElement&>(other);
    return same.edges_ == edges_ && same.length_ == length_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  double inset(Edge edge) const { return has(edges_, edge) ? length_ : 0; }
  Edge edges_;
  double length_;
};

class AspectRatioElement : public Element {
 public:
  explicit AspectRatioElement(double ratio) : ratio_(ratio) {}
  std::string_view kind() const override { return "AspectRatio"; }
  bool equals(const Element& other) const override {
    return static_cast<const AspectRatioElement&>(other).ratio_ == ratio_;
  }
  Measured measure(Node& node, Proposal proposal) const override;

 private:
  double ratio_;
};

/// A main child and a second one behind or before it, in slots 0 and 1 from back to front.
class LayerElement : public Element {
 public:
  enum class Side { behind, before };
  LayerElement(UnitPoint align, Side side) : align_(align), side_(side) {}
  std::string_view kind() const override { return side_ == Side::behind ? "Background" : "Overlay"; }
  bool equals(const Element& other) const override {
    return static_cast<const LayerElement&>(other).align_ == align_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;
  bool hasFixedSlots() const override { return true; }

 private:
  Node* main(Node& node) const;
  UnitPoint align_;
  Side side_;
};

class StackElement : public Element {
 public:
  StackElement(Axis axis, StackOptions options) : axis_(axis), options_(options) {}
  std::string_view kind() const override { return axis_ == Axis::horizontal ? "HStack" : "VStack"; }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const StackElement&>(other);
    return same.options_.spacing == options_.spacing && same.options_.align == options_.align;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;
  Axis axis() const { return axis_; }

 private:
  struct Share;
  std::vector<Share> shares(Node& node, Proposal proposal) const;
  Axis axis_;
  StackOptions options_;
};

class SpacerElement : public Element {
 public:
  std::string_view kind() const override { return "Spacer"; }
  bool equals(const Element&) const override { return true; }
  Measured measure(Node& node, Proposal proposal) const override;
};

class ZStackElement : public Element {
 public:
  explicit ZStackElement(UnitPoint align) : align_(align) {}
  std::string_view kind() const override { return "ZStack"; }
  bool equals(const Element& other) const override {
    return static_cast<const ZStackElement&>(other).align_ == align_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

 private:
  UnitPoint align_;
};

class ShapeElement : public Element {
 public:
  ShapeElement(Shape shape, Paint paint, std::optional<StrokeStyle> stroke)
      : shape_(std::move(shape)), paint_(std::move(paint)), stroke_(std::move(stroke)) {}
  std::string_view kind() const override { return "Shape"; }
  bool equals(const Element& other) const override;
  std::vector<double> animatedValues(const Environment&) const override;
  void draw(DrawContext& context) const override;
  bool draws() const override { return true; }
  bool affectsLayout(const Element&) const override { return false; }
  const ShapeElement* shape() const override { return stroke_ ? nullptr : this; }
  double overflow() const override { return stroke_ && !stroke_->inside ? stroke_->width / 2 : 0; }

  const Shape& outline() const { return shape_; }
  /// The shape with its animated numbers as presented.
  Shape presented(const std::vector<double>& values) const;
  /// The first colour as presented.
  static Color color(const std::vector<double>& values);

 private:
  Shape shape_;
  Paint paint_;
  std::optional<StrokeStyle> stroke_;
};

}  // namespace tarnwick::ui
