#pragma once
#include <QBrush>
#include <QColor>
#include <QPointF>
#include <QRect>
#include <QTransform>
#include <utility>
#include <vector>

namespace tarnwick::ui {

/// Light that fades from a centre outwards, with dithering: where it is dark its few levels would be seen as
/// rings.
struct RadialGradient {
  /// In the coordinates of what is filled.
  QPointF center;
  double radius;
  /// Positions from 0, the centre, to 1, and colours; ascending, at least one.
  std::vector<std::pair<double, QColor>> stops;

  /// @param toPixels from the painter's coordinates to its pixels
  /// @param area what is filled of them, at most
  QBrush brush(const QTransform& toPixels, const QRect& area) const;
};

}  // namespace tarnwick::ui
