#pragma once
#include "ui/View.h"

namespace tarnwick {

/// A device's battery level (percent) as a ring that fills when it is first shown. 20 points wide.
ui::View batteryRing(int level);

}  // namespace tarnwick
