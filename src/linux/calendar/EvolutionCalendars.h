#pragma once
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "base/Scheduler.h"
#include "linux/bus/MessageBus.h"
#include "linux/calendar/EvolutionCalendar.h"
#include "platform/Folders.h"

namespace tarnwick {

/// The reader of the module "CalendarReader.so" in that folder; null when the module or a library that it
/// needs is missing. May take long.
ReadCalendar* loadCalendarReader(const std::string& folder);

/// Whether this user has ever had calendars or an online account. For nobody else need the service be
/// started, which takes a hundred megabytes.
bool hasCalendars(const Folders& folders);

/// The calendars of Evolution Data Server, which desktops keep their online accounts in. Without it, access
/// counts as not granted. The service is spoken to as its own library does it: that library is good, but
/// brings forty others and four threads along, a third of all the memory that the overlay would need.
class EvolutionCalendars : public Calendars {
 public:
  /// @param bus the session's
  /// @param starts whether the service is started where it does not run; else it is waited for
  /// @param load called once, off the main thread, when there is a calendar
  /// @param retrySeconds before what has failed is asked for again
  EvolutionCalendars(Scheduler& scheduler, MessageBus& bus, bool starts, std::function<ReadCalendar*()> load,
      double retrySeconds = 60);

  /// Begins to look for the service; until then, there is no answer.
  void connect();

  void requestAccess(std::function<void(bool)> then) override;
  bool hasAccess() const override { return access_; }
  std::vector<CalendarEvent> events(Date from, Date to) override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

 private:
  /// An enabled calendar, by what the service calls its source.
  using Colors = std::map<QString, Color>;

  void look();
  void lookAgainAfter(double seconds);
  void setSources(const Colors& colors);
  void update();
  void publish();
  void setAccess(bool access);

  Scheduler& scheduler_;
  MessageBus& bus_;
  const std::function<ReadCalendar*()> load_;
  const double retrySeconds_;
  std::function<void(bool)> onAccess_;
  bool access_ = false;
  bool isConnected_ = false;
  BusService sources_;
  Colors colors_;
  ReadCalendar* read_ = nullptr;
  std::map<QString, std::unique_ptr<EvolutionCalendar>> calendars_;
  /// The days that the calendars follow; what is known is about them.
  std::optional<std::pair<Date, Date>> followed_;
  std::vector<CalendarEvent> known_;
  ObservableObject changes_;
  Task loading_, looking_;
};

}  // namespace tarnwick
