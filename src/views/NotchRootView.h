#pragma once
#include <functional>

#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The identity of the black surface within the root view.
inline constexpr const char* surfaceId = "surface";

/// Everything that the notch's window shows, for as long as it lives: the surface hangs from the middle of
/// the top edge, at the size that the model gives. `openSettings` is what the settings button does. Without
/// `roomForShadow` around the surface it casts none.
ui::View notchRootView(NotchModel& model, std::function<void()> openSettings, bool roomForShadow = true);

}  // namespace tarnwick
