#pragma once
#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The tray's page: a shelf for files, and where they are dropped.
ui::View trayView(NotchModel& model);

}  // namespace tarnwick
