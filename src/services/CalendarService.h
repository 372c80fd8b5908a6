#pragma once
#include <functional>
#include <map>
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

/// The user's events of today and tomorrow, and the banner that tells of the next one five minutes ahead.
class CalendarService : public ObservableObject {
 public:
  /// The ports must outlive the service.
  CalendarService(Calendars& calendars, Scheduler& scheduler)
      : calendars_(calendars), scheduler_(scheduler) {}

  /// By start, twelve at most. Of a repeating event that would take all places there are as many as the
  /// others leave.
  Observed<std::vector<CalendarItem>> events{*this};
  /// The user lets the program see the events.
  Observed<bool> authorized{*this};
  /// The demonstration's events stay as they are.
  bool frozen = false;

  /// Asks to present a banner for a number of seconds.
  std::function<void(const Banner&, double)> onBanner;

  /// Asks for access, and follows the calendars once it is given, until `stop`.
  void start();
  void stop();
  void reload();

  /// Events for the demonstration, until its end.
  void showcaseFill();
  void showcaseEnd();

 private:
  void accessChanged(bool granted);
  void tick();
  void awaitNextTick();
  void announce(const CalendarItem& item, double secondsUntilStart) const;

  Calendars& calendars_;
  Scheduler& scheduler_;
  bool isStarted_ = false;
  /// The ids of the events that were announced, and when they start.
  std::map<std::string, Date> alerted_;
  Subscription changes_;
  Task next_, midnight_;
};

}  // namespace tarnwick
