#pragma once
#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// The page of all Claude Code sessions, with the request of one of them, and a button to clear away those
/// that neither work nor wait.
ui::View claudeView(NotchModel& model);

}  // namespace tarnwick
