#pragma once
#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The page of what is playing and, where the calendar is wanted, of the next events. The cover has the
/// matched geometry "art" of `names`.
ui::View homeView(NotchModel& model, ui::Namespace names);

}  // namespace tarnwick
