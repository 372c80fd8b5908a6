#pragma once
#include <string>

#include "base/Date.h"

namespace tarnwick {

/// The first instant of a day in the local time zone: that of `date`, or so many days after it.
Date startOfDay(Date date, int daysLater = 0);

/// The time of day in the local time zone, in the short style of the active language: "3:00 PM" or "15:00".
std::string shortTime(Date date);

/// In the local time zone: 1…31.
int dayOfMonth(Date date);
/// The day of the week in the active language, in full and capitalised.
std::string weekdayName(Date date);

}  // namespace tarnwick
