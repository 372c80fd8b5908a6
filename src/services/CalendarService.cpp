#include "services/CalendarService.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/L10n.h"
#include "base/LocalTime.h"

namespace tarnwick {
namespace {

constexpr size_t maximumEvents = 12;
constexpr double leadTime = 300;
constexpr double tickInterval = 30;
constexpr double bannerSeconds = 6;

/// In decimal notation, always with a fractional part.
std::string decimal(double number) {
  char digits[64];
  const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed).ptr;
  const std::string text(digits, end);
  return text.find('.') == std::string::npos ? text + ".0" : text;
}

CalendarItem item(const CalendarEvent& event) {
  return {.id = event.identifier + decimal(event.start.secondsSince1970),
          .title = event.title.empty() ? tr("Untitled", "Sans titre") : event.title,
          .start = event.start,
          .end = event.end,
          .allDay = event.allDay,
          .color = event.color};
}

}  // namespace

void CalendarService::start() {
  calendars_.requestAccess([this](bool granted) { accessChanged(granted); });
}

void CalendarService::accessChanged(bool granted) {
  if (!granted) {
    changes_ = {};
    timer_.cancel();
    if (frozen) return;
    authorized = false;
    events = {};
    return;
  }
  authorized = true;
  reload();
  changes_ = calendars_.observe([this] { reload(); });
  timer_ = scheduler_.every(tickInterval, [this] { tick(); });
}

void CalendarService::reload() {
  if (!authorized || frozen) return;
  const Date now = scheduler_.now();
  std::vector<CalendarEvent> found = calendars_.events(now, startOfDay(now, 2));
  std::stable_sort(found.begin(), found.end(),
                   [](const CalendarEvent& a, const CalendarEvent& b) { return a.start < b.start; });
  if (found.size() > maximumEvents) found.resize(maximumEvents);
  std::vector<CalendarItem> items;
  for (const CalendarEvent& event : found) items.push_back(item(event));
  events = std::move(items);
  tick();
}

void CalendarService::tick() {
  const Date now = scheduler_.now();
  events.mutate([now](std::vector<CalendarItem>& items) {
    return std::erase_if(items, [now](const CalendarItem& each) { return each.end < now; }) > 0;
  });
  for (const CalendarItem& each : *events) {
    const double wait = each.start - now;
    if (each.allDay || wait <= 0 || wait > leadTime || !alerted_.insert(each.id).second) continue;
    announce(each, wait);
  }
}

void CalendarService::announce(const CalendarItem& item, double secondsUntilStart) const {
  if (!onBanner) return;
  const int minutes = std::max(1, static_cast<int>(secondsUntilStart / 60));
  onBanner({.icon = "calendar",
            .tint = item.color,
            .title = item.title,
            .subtitle = tr("Starts in ", "Commence dans ") + std::to_string(minutes) + " min · " +
                        shortTime(item.start)},
           bannerSeconds);
}

void CalendarService::showcaseFill() {
  frozen = true;
  authorized = true;
  const Date day = startOfDay(scheduler_.now());
  const auto at = [day](double hours) { return day + hours * 3600; };
  events = std::vector<CalendarItem>{
      {"s1", tr("Design review", "Revue de design"), at(15), at(15.5), false, colors::blue},
      {"s2", tr("Workout", "Sport"), at(18.5), at(19.5), false, colors::orange}};
}

void CalendarService::showcaseEnd() {
  frozen = false;
  authorized = calendars_.hasAccess();
  if (!authorized) events = {};
  reload();
}

}  // namespace tarnwick
