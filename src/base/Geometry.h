#pragma once
#include <algorithm>

namespace tarnwick {

/// Lengths are in points (pixels at ratio 1); y grows downwards from the top left.
struct Point {
  double x = 0, y = 0;
  friend constexpr bool operator==(Point, Point) = default;
  friend constexpr Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
  friend constexpr Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
};

struct Size {
  double width = 0, height = 0;
  friend constexpr bool operator==(Size, Size) = default;
};

struct Rect {
  double x = 0, y = 0, width = 0, height = 0;

  constexpr double right() const { return x + width; }
  constexpr double bottom() const { return y + height; }
  constexpr double midX() const { return x + width / 2; }
  constexpr double midY() const { return y + height / 2; }
  constexpr Point origin() const { return {x, y}; }
  constexpr Size size() const { return {width, height}; }
  constexpr bool isEmpty() const { return width <= 0 || height <= 0; }
  /// Left and top edges belong to the rectangle, right and bottom ones do not.
  constexpr bool contains(Point p) const { return p.x >= x && p.x < right() && p.y >= y && p.y < bottom(); }
  constexpr bool intersects(const Rect& other) const {
    return x < other.right() && other.x < right() && y < other.bottom() && other.y < bottom();
  }
  /// Grown by `dx` on the left and right and `dy` at the top and bottom.
  constexpr Rect grownBy(double dx, double dy) const {
    return {x - dx, y - dy, width + 2 * dx, height + 2 * dy};
  }
  constexpr Rect movedBy(Point offset) const { return {x + offset.x, y + offset.y, width, height}; }
  /// The smallest rectangle around both; an empty one adds nothing.
  constexpr Rect united(const Rect& other) const {
    if (isEmpty()) return other;
    if (other.isEmpty()) return *this;
    const double left = std::min(x, other.x), top = std::min(y, other.y);
    return {left, top, std::max(right(), other.right()) - left, std::max(bottom(), other.bottom()) - top};
  }
  friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

/// A place relative to a rectangle: (0, 0) is its top left corner, (1, 1) its bottom right one.
struct UnitPoint {
  double x = 0.5, y = 0.5;
  static const UnitPoint center, leading, trailing, top, bottom, topLeading, topTrailing, bottomLeading,
      bottomTrailing;
  friend constexpr bool operator==(UnitPoint, UnitPoint) = default;
};

inline constexpr UnitPoint UnitPoint::center{0.5, 0.5};
inline constexpr UnitPoint UnitPoint::leading{0, 0.5};
inline constexpr UnitPoint UnitPoint::trailing{1, 0.5};
inline constexpr UnitPoint UnitPoint::top{0.5, 0};
inline constexpr UnitPoint UnitPoint::bottom{0.5, 1};
inline constexpr UnitPoint UnitPoint::topLeading{0, 0};
inline constexpr UnitPoint UnitPoint::topTrailing{1, 0};
inline constexpr UnitPoint UnitPoint::bottomLeading{0, 1};
inline constexpr UnitPoint UnitPoint::bottomTrailing{1, 1};

/// The place of a box of size `inner` in one of size `outer`.
constexpr Rect aligned(Size inner, Size outer, UnitPoint align) {
  return {(outer.width - inner.width) * align.x, (outer.height - inner.height) * align.y, inner.width,
      inner.height};
}

}  // namespace tarnwick
