// The module that understands calendars' own format.
#include "linux/calendar/CalendarReader.h"

#include <libical/ical.h>

#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace tarnwick {
namespace {

constexpr time_t day = 86400;

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

bool has(icalcomponent* event, icalproperty_kind kind) {
  return icalcomponent_get_first_property(event, kind) != nullptr;
}

std::string text(const char* value) { return value ? value : ""; }

/// A time without a zone is told by its clock, as if that were the universal time's.
time_t seconds(const icaltimetype& time) {
  return icaltime_as_timet_with_zone(
      time, time.zone ? const_cast<icaltimezone*>(time.zone) : icaltimezone_get_utc_timezone());
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
      unknownZones_.insert(name);
    }
  }

  struct Expansion {
    Reader& reader;
    const std::map<time_t, icalcomponent*>& without;
    CalendarEvent pattern;
    bool isLocal;
    time_t length;
  };

  void expand(icalcomponent* event, const std::map<time_t, icalcomponent*>& without) {
    const icaltimetype start = icalcomponent_get_dtstart(event), end = icalcomponent_get_dtend(event);
    if (icaltime_is_null_time(start) || icalcomponent_get_status(event) == ICAL_STATUS_CANCELLED) return;
    Expansion expansion{.reader = *this,
                        .without = without,
                        .pattern = {.identifier = text(icalcomponent_get_uid(event)),
                                    .title = text(icalcomponent_get_summary(event)),
                                    .allDay = start.is_date != 0},
                        .isLocal = start.is_date || !start.zone,
                        .length = icaltime_is_null_time(end) ? 0 : seconds(end) - seconds(start)};
    if (start.is_date && expansion.length < day) expansion.length = day;
    // Local times may be most of a day off the universal time that the library takes them for.
    const auto bound = [](Date date, time_t margin) {
      return icaltime_from_timet_with_zone(static_cast<time_t>(date.secondsSince1970) + margin, 0,
                                           icaltimezone_get_utc_timezone());
    };
    icalcomponent_foreach_recurrence(event, bound(from_, -day - expansion.length), bound(to_, day), found,
                                     &expansion);
  }

  static void found(icalcomponent*, icaltime_span* span, void* data) {
    const auto& expansion = *static_cast<Expansion*>(data);
    if (expansion.without.contains(span->start)) return;
    CalendarEvent event = expansion.pattern;
    if (event.allDay) {
      event.start = local(span->start);
      event.end = local(span->start, static_cast<int>(expansion.length / day));
    } else if (expansion.isLocal) {
      event.start = local(span->start);
      event.end = local(span->start + expansion.length);
    } else {
      event.start = {static_cast<double>(span->start)};
      event.end = {static_cast<double>(span->start + expansion.length)};
    }
    if (event.start < expansion.reader.to_ && event.end >= expansion.reader.from_) {
      expansion.reader.reading_.events.push_back(std::move(event));
    }
  }

  const Component calendar_;
  std::map<std::string, Event> events_;
  std::set<std::string> unknownZones_;
  Date from_, to_;
  CalendarReading reading_;
};

}  // namespace
}  // namespace tarnwick

extern "C" tarnwick::CalendarReading tarnwickReadCalendar(const std::vector<std::string>& components,
                                                          tarnwick::Date from, tarnwick::Date to) {
  // The library's time zones are everybody's.
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  return tarnwick::Reader(components).read(from, to);
}
