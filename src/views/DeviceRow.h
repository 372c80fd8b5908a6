#pragma once
#include <functional>

#include "base/AudioDevice.h"
#include "ui/View.h"

namespace tarnwick {

/// One device to choose; the chosen one is marked in `accent`.
ui::View deviceRow(const AudioDevice& device, bool selected, Color accent, std::function<void()> action);

}  // namespace tarnwick
