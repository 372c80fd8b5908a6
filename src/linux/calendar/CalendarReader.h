#pragma once
#include <string>
#include <vector>

#include "platform/Calendars.h"

namespace tarnwick {

/// What the components of a calendar mean for a span of time.
struct CalendarReading {
  /// All occurrences that overlap the span, and those that end as it begins; but within bounds of number and
  /// time, whatever a rule makes of them. They have the event's own identifier, and no colour.
  std::vector<CalendarEvent> events;
  /// The events that repeat, by their identifiers.
  std::vector<std::string> repeating;
  /// Time zones that components refer to by these names, and that nobody knows. Their times count as local.
  std::vector<std::string> unknownZones;
};

/// Reads iCalendar components: events, whole calendars, time zones. Of an event given twice the last one
/// counts. What is none is left out. Any thread may call it. It lives in a module of its own, as its library
/// may be missing.
using ReadCalendar = CalendarReading(const std::vector<std::string>& components, Date from, Date to);
inline constexpr const char* readCalendarName = "tarnwickReadCalendar";

}  // namespace tarnwick
