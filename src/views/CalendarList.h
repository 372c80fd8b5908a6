#pragma once
#include "services/CalendarService.h"
#include "ui/View.h"

namespace tarnwick {

/// Today's date and the events to come.
ui::View calendarList(const CalendarService& calendar);

}  // namespace tarnwick
