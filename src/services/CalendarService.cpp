#include "services/CalendarService.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <utility>

#include "base/DisplayText.h"
#include "base/L10n.h"
#include "base/LocalTime.h"

namespace tarnwick {
namespace {

constexpr size_t maximumEvents = 12;
constexpr double leadTime = 300;
constexpr double bannerSeconds = 6;
/// How late an alarm may be for its minute to count as a whole one.
constexpr double lateness = 0.05;

/// In decimal notation, always with a fractional part.
std::string decimal(double number) {
  char digits[64];
  const auto end = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed).ptr;
  const std::string text(digits, end);
  return text.find('.') == std::string::npos ? text + ".0" : text;
}

CalendarItem item(const CalendarEvent& event) {
  return {.id = event.identifier + decimal(event.start.secondsSince1970),
      .title = event.title.empty() ? tr("Untitled", "Sans titre") : displayText(event.title),
      .start = event.start,
      .end = event.end,
      .allDay = event.allDay,
      .color = event.color};
}

/// Those that are listed, by their start: the first ones, but of each event at least one before others come
/// again. An event that repeats every hour would hide all others.
std::vector<CalendarEvent> listed(std::vector<CalendarEvent> events) {
  std::ranges::stable_sort(events, {}, &CalendarEvent::start);
  if (events.size() <= maximumEvents) return events;
  std::set<std::string> seen;
  std::stable_partition(events.begin(), events.end(),
      [&](const CalendarEvent& each) { return seen.insert(each.identifier).second; });
  events.resize(maximumEvents);
  std::ranges::stable_sort(events, {}, &CalendarEvent::start);
  return events;
}

}  // namespace

void CalendarService::start() {
  if (std::exchange(isStarted_, true)) return;
  calendars_.requestAccess([this](bool granted) { accessChanged(isStarted_ && granted); });
}

void CalendarService::stop() {
  if (std::exchange(isStarted_, false)) accessChanged(false);
}

void CalendarService::accessChanged(bool granted) {
  if (!granted) {
    changes_ = {};
    next_.cancel();
    midnight_.cancel();
    if (frozen) return;
    authorized = false;
    events = {};
    return;
  }
  authorized = true;
  reload();
  changes_ = calendars_.observe([this] { reload(); });
}

void CalendarService::reload() {
  if (!authorized || frozen) return;
  const Date now = scheduler_.now();
  std::vector<CalendarItem> items;
  for (const CalendarEvent& event : listed(calendars_.events(now, startOfDay(now, 2))))
    items.push_back(item(event));
  events = std::move(items);
  tick();
  // A new day brings another tomorrow.
  midnight_ = scheduler_.at(startOfDay(now, 1), [this] { reload(); });
}

void CalendarService::tick() {
  const Date now = scheduler_.now();
  events.mutate([now](std::vector<CalendarItem>& items) {
    return std::erase_if(items, [now](const CalendarItem& each) { return each.end < now; }) > 0;
  });
  for (const CalendarItem& each : *events) {
    const double wait = each.start - now;
    if (each.allDay || wait <= 0 || wait > leadTime || !alerted_.emplace(each.id, each.start).second)
      continue;
    announce(each, wait);
  }
  std::erase_if(alerted_, [now](const auto& alerted) { return alerted.second < now; });
  awaitNextTick();
}

void CalendarService::awaitNextTick() {
  const Date now = scheduler_.now();
  std::optional<Date> next;
  const auto consider = [&](Date date) {
    if (date > now && (!next || date < *next)) next = date;
  };
  for (const CalendarItem& each : *events) {
    consider(each.end + lateness);
    if (!each.allDay) consider(each.start - leadTime);
  }
  next_ = {};
  // Where an event makes room, another may move up.
  if (next) next_ = scheduler_.at(*next, [this] { reload(); });
}

void CalendarService::announce(const CalendarItem& item, double secondsUntilStart) const {
  if (!onBanner) return;
  const int minutes = std::max(1, static_cast<int>((secondsUntilStart + lateness) / 60));
  onBanner(
      {.icon = "calendar",
          .tint = item.color,
          .title = item.title,
          .subtitle = tr("Starts in ", "Commence dans ") + std::to_string(minutes) + " min · " +
                      shortTime(item.start)},
      bannerSeconds);
}

void CalendarService::showcaseFill() {
  frozen = true;
  authorized = true;
  next_.cancel();
  midnight_.cancel();
  const Date day = startOfDay(scheduler_.now());
  const auto at = [day](double hours) { return day + hours * 3600; };
  events = std::vector<CalendarItem>{
      {"s1", tr("Design review", "Revue de design"), at(15), at(15.5), false, colors::blue},
      {"s2", tr("Workout", "Sport"), at(18.5), at(19.5), false, colors::orange}};
}

void CalendarService::showcaseEnd() {
  frozen = false;
  authorized = isStarted_ && calendars_.hasAccess();
  if (!authorized) events = {};
  reload();
}

}  // namespace tarnwick
