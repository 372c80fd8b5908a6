#pragma once
#include "ui/View.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {

/// Shows a part of its content, which may be longer than itself along one axis.
class ScrollElement : public Element {
 public:
  explicit ScrollElement(Axis axis) : axis_(axis) {}
  static constexpr ElementKind itsKind{"ScrollView"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const ScrollElement&>(other).axis_ == axis_;
  }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;
  bool clips() const override { return true; }
  Axis axis() const { return axis_; }
  /// Scrolls by `delta` points as far as the content goes. @return false when it is at its end already.
  static bool scroll(Node& node, Point delta);

 private:
  Axis axis_;
};

/// Rows of one height, of which the scene builds those in view.
class LazyElement : public Element {
 public:
  explicit LazyElement(LazyRows rows) : rows_(std::move(rows)) {}
  static constexpr ElementKind itsKind{"LazyVStack"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element&) const override { return false; }
  Measured measure(Node& node, Proposal proposal) const override;
  void place(Node& node, Size size) const override;

  /// The rows that can be seen in the scroll view around `node`, and some beyond.
  std::pair<size_t, size_t> rangeInView(const Node& node) const;
  std::vector<View> build(size_t first, size_t count) const;

 private:
  LazyRows rows_;
};

}  // namespace tarnwick::ui
