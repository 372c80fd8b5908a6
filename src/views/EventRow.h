#pragma once
#include <string>

#include "services/CalendarService.h"
#include "ui/View.h"

namespace tarnwick {

/// Height of a row in the list of events, in points.
inline constexpr double eventRowHeight = 32;

/// One event: its calendar's colour, its title, and when it is.
ui::View eventRow(const CalendarItem& event, Date now);

/// When the event is, seen from `now`: "9:00 AM – 10:30 AM", "Tomorrow · All day".
std::string eventTime(const CalendarItem& event, Date now);

}  // namespace tarnwick
