#pragma once
#include "ui/View.h"

namespace tarnwick::ui {

/// Takes all that is offered and puts its content below `point`, or above it where there is no room on
/// `surface`; both in its own coordinates.
View Beside(Point point, const Rect& surface, View content);

}  // namespace tarnwick::ui
