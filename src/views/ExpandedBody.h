#pragma once
#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The page of the selected tab, below the strip of the open notch.
ui::View expandedBody(NotchModel& model);

}  // namespace tarnwick
