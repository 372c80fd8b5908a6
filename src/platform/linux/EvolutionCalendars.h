#pragma once
#include <QObject>
#include <memory>
#include <optional>
#include <string>

#include "base/Scheduler.h"
#include "platform/linux/CalendarClient.h"

namespace tarnwick {

/// The function that makes calendar clients, from the module in that folder; null when the module or a
/// library that it needs is missing. May take long.
MakeCalendarClient* loadCalendarModule(const std::string& folder);

/// The calendars of Evolution Data Server, which desktops keep their online accounts in. Without it, access
/// counts as not granted.
class EvolutionCalendars : public QObject, public Calendars {
 public:
  /// @param load called once, off the main thread, when access is asked for
  EvolutionCalendars(Scheduler& scheduler, std::function<MakeCalendarClient*()> load);

  /// Requests that came before are carried out now.
  void allowConnecting();

  void requestAccess(std::function<void(bool)> then) override;
  bool hasAccess() const override { return access_; }
  std::vector<CalendarEvent> events(Date from, Date to) override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

 private:
  void connect();
  void makeClient(MakeCalendarClient* make);
  void checkDay();

  Scheduler& scheduler_;
  const std::function<MakeCalendarClient*()> load_;
  std::function<void(bool)> onAccess_;
  bool allowed_ = false;
  bool access_ = false;
  /// The days that the client follows; its last answer is about them.
  std::optional<std::pair<Date, Date>> followed_;
  std::vector<CalendarEvent> known_;
  ObservableObject changes_;
  Task loading_;
  Task dayTimer_;
  Date day_;
  /// Ends first: its thread reports to the rest.
  std::unique_ptr<CalendarClient> client_;
};

}  // namespace tarnwick
