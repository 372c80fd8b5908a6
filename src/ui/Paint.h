#pragma once
#include <utility>
#include <vector>

#include "base/Color.h"
#include "base/Geometry.h"

namespace tarnwick::ui {

/// What a shape is filled or stroked with. Colours animate.
struct Paint {
  enum class Kind { color, linear, radial };
  struct Stop {
    double position;
    Color color;
    friend bool operator==(const Stop&, const Stop&) = default;
  };

  Kind kind = Kind::color;
  std::vector<Stop> stops;
  /// Of a linear gradient: its ends. Of a radial one: `start` is the centre.
  UnitPoint start = UnitPoint::top, end = UnitPoint::bottom;
  /// Of a radial gradient: the radius (points) at which the last colour is reached.
  double radius = 0;

  Paint(Color color) : stops{{0, color}} {}
  Paint(Kind gradient, std::vector<Stop> colors) : kind(gradient), stops(std::move(colors)) {}

  friend bool operator==(const Paint&, const Paint&) = default;
};

/// The colour's own gentle gradient: a little lighter at the top.
Paint gradientOf(Color color);
Paint linearGradient(std::vector<Color> colors, UnitPoint start, UnitPoint end);
/// From the first colour at `center` to the last one `radius` points away.
Paint radialGradient(std::vector<Color> colors, UnitPoint center, double radius);

}  // namespace tarnwick::ui
