#include "views/CalendarList.h"

#include <algorithm>

#include "base/L10n.h"
#include "base/LocalTime.h"
#include "ui/Dynamic.h"
#include "views/EventRow.h"
#include "views/Transitions.h"

namespace tarnwick {

using namespace ui;

namespace {

/// How late the list may learn of midnight, in seconds.
constexpr double dayCheck = 10;
constexpr double spacing = 6, headerHeight = 24;

/// `more`: how many events there is no room for.
View header(Date now, size_t more) {
  const View day = Text(std::to_string(dayOfMonth(now))).font({20, Weight::bold});
  const View weekday =
      Text(weekdayName(now)).font({11, Weight::semibold}).foreground(colors::red.opacity(0.9));
  View number;
  if (more > 0) {
    number = Text("+" + std::to_string(more)).font({10, Weight::medium}).foreground(white(0.4));
  }
  return HStack({.spacing = 6, .align = Align::firstTextBaseline}, {day, weekday, Spacer(), number})
      .padding(Edge::trailing, 4)
      .frame({.height = headerHeight});
}

/// A window on the events, in which as many can be seen as have room wholly.
View list(const std::vector<CalendarItem>& events, size_t seen, Date now) {
  Views rows;
  for (const CalendarItem& event : events) {
    const double delay = 0.14 + 0.05 * double(rows.size());
    rows.push_back(eventRow(event, now).id(event.id).transition(notchContent(delay, UnitPoint::top)));
  }
  return ScrollView(Axis::vertical, VStack({.spacing = spacing}, rows))
      .frame({.height = double(seen) * (eventRowHeight + spacing) - spacing});
}

View agenda(const CalendarService& calendar, double height, Date now) {
  const std::vector<CalendarItem>& events = calendar.events;
  size_t more = 0;
  View content;
  if (!calendar.authorized) {
    content =
        Text(tr("Calendar access not allowed", "Calendrier non autorisé")).font({11}).foreground(white(0.4));
  } else if (events.empty()) {
    content = Text(tr("Your day is clear ✨", "Ta journée est libre ✨")).font({12}).foreground(white(0.5));
  } else {
    const double room = (height - headerHeight) / (eventRowHeight + spacing);
    const size_t seen = std::min(events.size(), size_t(std::max(1.0, room)));
    more = events.size() - seen;
    content = list(events, seen, now);
  }
  return VStack({.spacing = spacing, .align = Align::leading}, {header(now, more), content});
}

}  // namespace

View calendarList(const CalendarService& calendar) {
  return timeline(dayCheck, false, [&calendar](Date now) {
    return GeometryReader([&calendar, now](Size size) {
      return agenda(calendar, size.height, now)
          .frame({.width = size.width, .height = size.height, .align = UnitPoint::leading});
    });
  });
}

}  // namespace tarnwick
