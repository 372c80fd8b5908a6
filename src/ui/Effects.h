#pragma once
#include "base/Geometry.h"

namespace tarnwick::ui {

/// What is done to a drawn view without touching its layout: blur, then brightness, then scale and rotation
/// about `anchor`, then opacity, then offset. All but the anchor animate.
struct Effects {
  double opacity = 1;
  /// Standard deviation in points.
  double blur = 0;
  /// Added to each channel, −1…1.
  double brightness = 0;
  double scaleX = 1, scaleY = 1;
  /// Degrees, clockwise.
  double rotation = 0;
  Point offset;
  UnitPoint anchor = UnitPoint::center;

  friend constexpr bool operator==(const Effects&, const Effects&) = default;
};

}  // namespace tarnwick::ui
