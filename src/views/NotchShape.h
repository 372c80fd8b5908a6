#pragma once
#include "base/Presentation.h"
#include "ui/Shape.h"

namespace tarnwick {

/// Width and depth of the ears with which the notch joins the top edge of the screen, in points.
inline constexpr double notchFlare = 6;

/// Radius of the surface's bottom corners, in points.
double notchBottomRadius(Presentation presentation, bool hovering);

/// The outline of the notch: it hangs from the top edge of its box, concave ears on both sides, the bottom
/// corners rounded as far as there is room. `bottomRadius` animates, a change of `flare` jumps; both in
/// points.
ui::Shape NotchShape(double flare, double bottomRadius);

}  // namespace tarnwick
