#pragma once
#include <functional>
#include <string>
#include <vector>

#include "base/Color.h"
#include "base/Date.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// One occurrence of an event in one of the user's calendars.
struct CalendarEvent {
  /// The same for all occurrences of a repeating event.
  std::string identifier;
  /// Empty when it has none.
  std::string title;
  Date start;
  /// The first instant after the event.
  Date end;
  /// It takes whole days of the local time zone.
  bool allDay = false;
  /// That of its calendar.
  Color color;

  friend bool operator==(const CalendarEvent&, const CalendarEvent&) = default;
};

/// All enabled calendars of the user.
class Calendars {
 public:
  virtual ~Calendars() = default;

  /// Asks for access to the events. Calls `then` on the main thread when the answer is there, and again
  /// whenever it changes. One at a time: a later request replaces an earlier one.
  virtual void requestAccess(std::function<void(bool)> then) = 0;
  virtual bool hasAccess() const = 0;

  /// What is known now of the events that overlap [from, to). What becomes known later is reported.
  virtual std::vector<CalendarEvent> events(Date from, Date to) = 0;
  /// Calls `onChange` on the main thread when `events` would give another answer.
  virtual Subscription observe(std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
