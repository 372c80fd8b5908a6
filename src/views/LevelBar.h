#pragma once
#include "ui/View.h"

namespace tarnwick {

/// A bar that is filled to `value` (0…1) and glows in `tint`. It takes the space that it is given.
ui::View levelBar(double value, Color tint);

}  // namespace tarnwick
