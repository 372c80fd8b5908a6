#pragma once
#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The page of sound and light: the outputs to choose from, sliders for volume, microphone and brightness,
/// and a menu of the inputs.
ui::View audioView(NotchModel& model);

}  // namespace tarnwick
