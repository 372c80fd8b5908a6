#pragma once
#include "ui/View.h"

namespace tarnwick::ui {

/// Where something floats: beside `anchor`, and on `surface`, both in the coordinates of the view that takes
/// all that is offered.
struct BesideOptions {
  Rect anchor;
  Rect surface;
  /// Points between the anchor and what is below it or, where there is no room, above it.
  double below = 0, above = 0;
  /// Points that are kept free along the edges of the surface.
  double margin = 0;
  /// Which part of the content stands at the same part of the anchor: 0 their left edges, 0.5 their middles.
  double align = 0.5;
  friend bool operator==(const BesideOptions&, const BesideOptions&) = default;
};

/// Puts its content there, at most as high as there is room.
View Beside(const BesideOptions& options, View content);

}  // namespace tarnwick::ui
