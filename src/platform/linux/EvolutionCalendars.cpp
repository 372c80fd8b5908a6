#include "platform/linux/EvolutionCalendars.h"

#include <algorithm>

#include "base/LocalTime.h"
#include "platform/linux/Module.h"

namespace tarnwick {
namespace {

constexpr double dayCheckInterval = 30;

}  // namespace

MakeCalendarClient* loadCalendarModule(const std::string& folder) {
  return reinterpret_cast<MakeCalendarClient*>(
      moduleFunction(folder + "/EvolutionCalendars.so", makeCalendarClientName));
}

EvolutionCalendars::EvolutionCalendars(Scheduler& scheduler, std::function<MakeCalendarClient*()> load)
    : scheduler_(scheduler), load_(std::move(load)) {}

void EvolutionCalendars::allowConnecting() {
  allowed_ = true;
  if (onAccess_) connect();
}

void EvolutionCalendars::requestAccess(std::function<void(bool)> then) {
  onAccess_ = std::move(then);
  if (access_) {
    onAccess_(true);
  } else if (allowed_) {
    connect();
  }
}

void EvolutionCalendars::connect() {
  if (client_ || loading_) return;
  const auto make = std::make_shared<MakeCalendarClient*>();
  loading_ = scheduler_.background([make, load = load_] { *make = load(); },
                                   [this, make] {
                                     loading_ = Task();
                                     if (*make) return makeClient(*make);
                                     onAccess_(false);
                                   });
}

void EvolutionCalendars::makeClient(MakeCalendarClient* make) {
  const auto onMain = [this](auto work) { QMetaObject::invokeMethod(this, work, Qt::QueuedConnection); };
  client_.reset(make({.onAccess =
                          [this, onMain](bool access) {
                            onMain([this, access] {
                              access_ = access;
                              known_.clear();
                              onAccess_(access);
                            });
                          },
                      .onEvents =
                          [this, onMain](std::vector<CalendarEvent> events) {
                            onMain([this, events = std::move(events)] {
                              if (events == known_) return;
                              known_ = events;
                              changes_.notifyObservers();
                            });
                          }}));
  if (followed_) client_->follow(followed_->first, followed_->second);
  day_ = startOfDay(scheduler_.now());
  dayTimer_ = scheduler_.every(dayCheckInterval, [this] { checkDay(); });
}

/// Whoever asked for the events of the next days means others on a new day.
void EvolutionCalendars::checkDay() {
  const Date day = startOfDay(scheduler_.now());
  if (std::exchange(day_, day) != day) changes_.notifyObservers();
}

std::vector<CalendarEvent> EvolutionCalendars::events(Date from, Date to) {
  // Whole days, so that the time passing asks for nothing new.
  const std::pair days(startOfDay(from), to);
  if (followed_ != days) {
    followed_ = days;
    if (client_) client_->follow(days.first, days.second);
  }
  std::vector<CalendarEvent> found;
  std::copy_if(known_.begin(), known_.end(), std::back_inserter(found), [=](const CalendarEvent& event) {
    return event.start < to && (event.end > from || event.start >= from);
  });
  return found;
}

}  // namespace tarnwick
