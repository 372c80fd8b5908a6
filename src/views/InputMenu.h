#pragma once
#include "services/AudioService.h"
#include "ui/View.h"

namespace tarnwick {

/// The name of the device that records, and a menu to choose another one.
ui::View inputMenu(AudioService& audio);

}  // namespace tarnwick
