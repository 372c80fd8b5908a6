#pragma once
#include "core/NotchModel.h"
#include "ui/View.h"

namespace tarnwick {

/// What a tab is called in the user's language.
std::string tabTitle(Tab tab);

/// Points that the tab bar is wide.
extern const double tabBarWidth;

/// The expanded notch's tabs. The mascot shares the matched geometry "crab" of `names`.
ui::View tabBar(NotchModel& model, ui::Namespace names);

}  // namespace tarnwick
