#pragma once
#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The page of the selected tab, below the strip of the open notch. The cover on the home page has the
/// matched geometry "art" of `names`.
ui::View expandedBody(NotchModel& model, ui::Namespace names);

}  // namespace tarnwick
