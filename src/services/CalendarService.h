#pragma once
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "base/Banner.h"
#include "base/Observed.h"
#include "base/Scheduler.h"
#include "platform/Calendars.h"

namespace tarnwick {

/// An event as the views show it.
struct CalendarItem {
  /// Differs between the occurrences of a repeating event.
  std::string id;
  std::string title;
  Date start;
  Date end;
  bool allDay = false;
  Color color;

  friend bool operator==(const CalendarItem&, const CalendarItem&) = default;
};

/// The user's events of today and tomorrow, and the banner that tells of the next one.
class CalendarService : public ObservableObject {
 public:
  /// The ports must outlive the service.
  CalendarService(Calendars& calendars, Scheduler& scheduler)
      : calendars_(calendars), scheduler_(scheduler) {}

  /// The first of them, by start.
  Observed<std::vector<CalendarItem>> events{*this};
  /// The user lets the program see the events.
  Observed<bool> authorized{*this};
  /// The demonstration's events stay as they are.
  bool frozen = false;

  /// Asks to present a banner for a number of seconds.
  std::function<void(const Banner&, double)> onBanner;

  /// Asks for access, and follows the calendars once it is given.
  void start();
  void reload();

  /// Events for the demonstration, until its end.
  void showcaseFill();
  void showcaseEnd();

 private:
  void accessChanged(bool granted);
  void tick();
  void announce(const CalendarItem& item, double secondsUntilStart) const;

  Calendars& calendars_;
  Scheduler& scheduler_;
  /// The ids of the events that were announced.
  std::set<std::string> alerted_;
  Subscription changes_;
  Task timer_;
};

}  // namespace tarnwick
