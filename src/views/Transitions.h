#pragma once
#include "ui/Transition.h"

/// How the contents of the notch come and go.
namespace tarnwick {

/// A wing's item emerges from the notch and goes back into it. `side`: -1 in the left wing, +1 in the right
/// one.
ui::Transition wing(double side);

/// What drops into the open notch, `delay` seconds after the change, growing about `anchor`.
ui::Transition notchContent(double delay, UnitPoint anchor);

/// A page comes in from the side that the selection moved to, and the one before it leaves to the other side,
/// along the animation of the change. `direction`: +1 to the right, -1 to the left.
ui::Transition tabSlide(double direction);

}  // namespace tarnwick
