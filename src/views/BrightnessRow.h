#pragma once
#include "platform/DisplayBrightness.h"
#include "ui/View.h"

namespace tarnwick {

/// A slider for the display's brightness, which follows it while it is shown; nothing where it cannot be
/// changed.
ui::View brightnessRow(DisplayBrightness& brightness);

}  // namespace tarnwick
