#pragma once
#include <vector>

#include "ui/Paint.h"
#include "ui/Path.h"

namespace tarnwick::ui {

class View;

/// How an outline is drawn.
struct StrokeStyle {
  double width = 1;
  /// Draws the line wholly inside the shape instead of along its edge.
  bool inside = false;
  /// Lengths of dash and gap in points; empty: a solid line.
  std::vector<double> dash;
  /// Where in the pattern the line begins, in points; animates.
  double dashPhase = 0;
  /// The part of the outline that is drawn, as fractions of its length; animate.
  double trimFrom = 0, trimTo = 1;

  friend bool operator==(const StrokeStyle&, const StrokeStyle&) = default;
};

/// An outline that fits itself into a size. A new kind of shape is one `Outline` function.
struct Shape {
  /// The outline in a box of the given size with its origin at (0, 0). `animated` are the numbers that may be
  /// on their way to another value, `fixed` those that jump.
  using Outline = Path (*)(Size size, const std::vector<double>& animated, const std::vector<double>& fixed);

  Outline outline;
  std::vector<double> animated = {};
  std::vector<double> fixed = {};
  /// How far from the edges of its box the outline may differ from straight edges, in points. It lets a
  /// shadow be drawn from its corners. None: the outline depends on the size as a whole.
  using CornerExtent = double (*)(const std::vector<double>& animated, const std::vector<double>& fixed);
  CornerExtent extent = nullptr;

  /// `extent` for the numbers as they are; negative where there is none.
  double cornerExtent() const { return extent ? extent(animated, fixed) : -1; }

  View fill(Paint paint) const;
  View stroke(Paint paint, StrokeStyle style = {}) const;

  friend bool operator==(const Shape&, const Shape&) = default;
};

Shape Rectangle();
/// Corners of continuous curvature; `radius` in points, animates.
Shape RoundedRectangle(double radius);
/// Fully rounded at the shorter sides.
Shape Capsule();
/// The largest circle that fits, centred.
Shape Circle();

}  // namespace tarnwick::ui
