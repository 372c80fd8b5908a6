#pragma once
#include <functional>

#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The strip beside the camera notch: what the presentation shows in the left and in the right wing. The
/// mascot and the artwork share the matched geometries "crab" and "art" of `names`.
ui::View topStrip(NotchModel& model, ui::Namespace names, std::function<void()> openSettings);

}  // namespace tarnwick
