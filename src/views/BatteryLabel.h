#pragma once
#include "ui/View.h"

namespace tarnwick {

/// The battery's level (percent) as a number and as a picture of a battery.
ui::View batteryLabel(int level, bool charging);

/// The colour that tells a good level from a low one.
Color batteryColor(int level);

}  // namespace tarnwick
