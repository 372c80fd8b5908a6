// The module that understands calendars' own format.
#include "linux/calendar/CalendarReader.h"

#include <libical/ical.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;

constexpr time_t day = 86400;

// Far more than anybody looks at. A rule that repeats every second for fifty years has more than a billion.
constexpr size_t mostOccurrences = 3000;
constexpr size_t mostEvents = 5000;
constexpr size_t mostZones = 50;
constexpr size_t longestText = 1000;
constexpr auto longestReading = std::chrono::milliseconds(1000),
               longestEvent = std::chrono::milliseconds(100);

struct Free {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using Component = std::unique_ptr<icalcomponent, Free>;

template<typename Work>
void forEachPart(icalcomponent* whole, icalcomponent_kind kind, Work work) {
  for (icalcomponent* part = icalcomponent_get_first_component(whole, kind); part;) {
    icalcomponent* next = icalcomponent_get_next_component(whole, kind);
    work(part);
    part = next;
  }
}

template<typename Work>
void forEachProperty(icalcomponent* event, icalproperty_kind kind, Work work) {
  for (icalproperty* property = icalcomponent_get_first_property(event, kind); property;
       property = icalcomponent_get_next_property(event, kind)) {
    work(property);
  }
}

bool has(icalcomponent* event, icalproperty_kind kind) {
  return icalcomponent_get_first_property(event, kind) != nullptr;
}

std::string text(const char* value) { return value ? std::string(value, ::strnlen(value, longestText)) : ""; }

/// A time without a zone is told by its clock, as if that were the universal time's.
time_t seconds(const icaltimetype& time) {
  return icaltime_as_timet_with_zone(
      time, time.zone ? const_cast<icaltimezone*>(time.zone) : icaltimezone_get_utc_timezone());
}

/// The library looks at each step of a rule before it tells one that fits, or that none does.
bool isEndless(const icalrecurrencetype& rule, time_t span) {
  constexpr time_t mostSteps = 100'000;
  const short* const filters[] = {rule.by_month, rule.by_week_no, rule.by_year_day, rule.by_month_day,
      rule.by_day, rule.by_set_pos, rule.by_hour, rule.by_minute, rule.by_second};
  const bool isFiltered =
      std::ranges::any_of(filters, [](const short* filter) { return *filter != ICAL_RECURRENCE_ARRAY_MAX; });
  const time_t step =
      rule.freq == ICAL_SECONDLY_RECURRENCE   ? 1
      : rule.freq == ICAL_MINUTELY_RECURRENCE ? 60
      : rule.freq == ICAL_HOURLY_RECURRENCE
          ? 3600
          : day;
  return isFiltered && span / step > mostSteps;
}

/// What a local clock that shows this time means.
Date local(time_t clock, int daysLater = 0) {
  std::tm parts{};
  ::gmtime_r(&clock, &parts);
  parts.tm_mday += daysLater;
  parts.tm_isdst = -1;
  return {static_cast<double>(std::mktime(&parts))};
}

/// All that is told of one event: as it repeats, and the occurrences that were changed one by one.
struct Event {
  icalcomponent* rule = nullptr;
  /// By the start that each had before.
  std::map<time_t, icalcomponent*> changed;
};

class Reader {
 public:
  explicit Reader(const std::vector<std::string>& components)
      : calendar_(icalcomponent_new(ICAL_VCALENDAR_COMPONENT)) {
    for (const std::string& component : components) add(component);
    forEachPart(calendar_.get(), ICAL_VEVENT_COMPONENT, [this](icalcomponent* event) { note(event); });
  }

  CalendarReading read(Date from, Date to) {
    from_ = from;
    to_ = to;
    for (const auto& [identifier, event] : events_) {
      if (event.rule) {
        if (repeats(event.rule)) reading_.repeating.push_back(identifier);
        expand(event.rule, event.changed);
      }
      for (const auto& [before, one] : event.changed) expand(one, {});
    }
    icalcomponent_foreach_tzid(calendar_.get(), noteZone, this);
    reading_.unknownZones.assign(unknownZones_.begin(), unknownZones_.end());
    return std::move(reading_);
  }

 private:
  static bool repeats(icalcomponent* event) {
    return has(event, ICAL_RRULE_PROPERTY) || has(event, ICAL_RDATE_PROPERTY);
  }

  void add(const std::string& written) {
    icalcomponent* component = icalparser_parse_string(written.c_str());
    if (!component) return;
    if (icalcomponent_isa(component) != ICAL_VCALENDAR_COMPONENT) {
      icalcomponent_add_component(calendar_.get(), component);
      return;
    }
    forEachPart(component, ICAL_ANY_COMPONENT, [&](icalcomponent* part) {
      icalcomponent_remove_component(component, part);
      icalcomponent_add_component(calendar_.get(), part);
    });
    icalcomponent_free(component);
  }

  void note(icalcomponent* event) {
    Event& known = events_[text(icalcomponent_get_uid(event))];
    if (has(event, ICAL_RECURRENCEID_PROPERTY)) {
      known.changed[seconds(icalcomponent_get_recurrenceid(event))] = event;
    } else {
      known.rule = event;
    }
  }

  static void noteZone(icalparameter* parameter, void* self) {
    static_cast<Reader*>(self)->noteZone(icalparameter_get_tzid(parameter));
  }
  void noteZone(const char* name) {
    if (!icalcomponent_get_timezone(calendar_.get(), name) &&
        !icaltimezone_get_builtin_timezone_from_tzid(name) && !icaltimezone_get_builtin_timezone(name)) {
      if (unknownZones_.size() < mostZones) unknownZones_.insert(name);
    }
  }

  /// Takes the occurrences of an event that belong to the span, without those that are told of one by one.
  void expand(icalcomponent* event, const std::map<time_t, icalcomponent*>& without) {
    icaltimetype start = icalcomponent_get_dtstart(event);
    const icaltimetype end = icalcomponent_get_dtend(event);
    if (icaltime_is_null_time(start) || icalcomponent_get_status(event) == ICAL_STATUS_CANCELLED) return;
    CalendarEvent pattern{.identifier = text(icalcomponent_get_uid(event)),
        .title = text(icalcomponent_get_summary(event)),
        .allDay = start.is_date != 0};
    const bool isLocal = start.is_date || !start.zone;
    time_t length = icaltime_is_null_time(end) ? 0 : seconds(end) - seconds(start);
    if (start.is_date && length < day) length = day;
    // Local times may be most of a day off the universal time that they are taken for here.
    const time_t earliest = static_cast<time_t>(from_.secondsSince1970) - day - length;
    const time_t latest = static_cast<time_t>(to_.secondsSince1970) + day;
    const Clock::time_point deadline = std::min(deadline_, Clock::now() + longestEvent);
    const size_t most = std::min(mostEvents, reading_.events.size() + mostOccurrences);

    /// @return false: no more of them
    const auto take = [&](icaltimetype time) {
      if (!time.zone) time.zone = start.zone;
      const time_t clock = seconds(time);
      if (clock > latest || reading_.events.size() == most) return false;
      if (clock < earliest || without.contains(clock) ||
          icalproperty_recurrence_is_excluded(event, &start, &time)) {
        return true;
      }
      pattern.start = isLocal ? local(clock) : Date{static_cast<double>(clock)};
      pattern.end =
          pattern.allDay ? local(clock, static_cast<int>(length / day))
          : isLocal      ? local(clock + length)
                         : Date{static_cast<double>(clock + length)};
      if (pattern.start < to_ && pattern.end >= from_) reading_.events.push_back(pattern);
      return true;
    };
    take(start);
    forEachProperty(event, ICAL_RRULE_PROPERTY, [&](icalproperty* property) {
      icalrecurrencetype rule = icalproperty_get_rrule(property);
      // What is counted is counted from the first.
      const bool skipsAhead = rule.count == 0 && earliest > seconds(start);
      const time_t begin = skipsAhead ? earliest : seconds(start);
      if (isEndless(rule, latest - begin)) return;
      auto* zone = const_cast<icaltimezone*>(start.zone ? start.zone : icaltimezone_get_utc_timezone());
      const auto at = [&](time_t clock) {
        icaltimetype time = icaltime_from_timet_with_zone(clock, start.is_date, zone);
        time.zone = start.zone;
        return time;
      };
      if (icaltime_is_null_time(rule.until) || seconds(rule.until) > latest) rule.until = at(latest);
      const std::unique_ptr<icalrecur_iterator, decltype(&icalrecur_iterator_free)> iterator(
          icalrecur_iterator_new(rule, start), icalrecur_iterator_free);
      if (!iterator) return;
      if (skipsAhead) icalrecur_iterator_set_start(iterator.get(), at(earliest));
      for (;;) {
        const icaltimetype time = icalrecur_iterator_next(iterator.get());
        if (icaltime_is_null_time(time)) break;
        if (Clock::now() > deadline || (icaltime_compare(time, start) != 0 && !take(time))) break;
      }
    });
    forEachProperty(event, ICAL_RDATE_PROPERTY, [&](icalproperty* property) {
      const icaldatetimeperiodtype date = icalproperty_get_rdate(property);
      if (Clock::now() <= deadline) take(icaltime_is_null_time(date.time) ? date.period.start : date.time);
    });
  }

  const Component calendar_;
  std::map<std::string, Event> events_;
  std::set<std::string> unknownZones_;
  Date from_, to_;
  const Clock::time_point deadline_ = Clock::now() + longestReading;
  CalendarReading reading_;
};

}  // namespace
}  // namespace tarnwick

extern "C" tarnwick::CalendarReading tarnwickReadCalendar(
    const std::vector<std::string>& components, tarnwick::Date from, tarnwick::Date to) {
  // The library's time zones are everybody's.
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  return tarnwick::Reader(components).read(from, to);
}
