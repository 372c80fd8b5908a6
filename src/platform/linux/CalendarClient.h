#pragma once
#include <functional>
#include <vector>

#include "platform/Calendars.h"

namespace tarnwick {

/// What a calendar client tells, on a thread of its own.
struct CalendarListener {
  /// The calendars can be read, or no longer.
  std::function<void(bool)> onAccess;
  /// All events of the days that are followed, after each change.
  std::function<void(std::vector<CalendarEvent>)> onEvents;
};

/// Follows the user's calendars until it is destroyed. It lives in a module of its own, as the calendar
/// service's library brings dozens of others along.
class CalendarClient {
 public:
  virtual ~CalendarClient() = default;
  /// Follows the events that overlap [from, to) from now on, and no others. May be called at any time.
  virtual void follow(Date from, Date to) = 0;
};

/// The module's function that makes a client; the caller owns it.
using MakeCalendarClient = CalendarClient*(CalendarListener listener);
inline constexpr const char* makeCalendarClientName = "tarnwickMakeCalendarClient";

}  // namespace tarnwick
