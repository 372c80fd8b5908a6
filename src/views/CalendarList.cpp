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

View header(Date now) {
  return HStack({.spacing = 6, .align = Align::firstTextBaseline},
                {
                    Text(std::to_string(dayOfMonth(now))).font({20, Weight::bold}),
                    Text(weekdayName(now)).font({11, Weight::semibold}).foreground(colors::red.opacity(0.9)),
                })
      .frame({.height = headerHeight});
}

/// As high as they are where there is room, else a window on them.
View rows(const std::vector<CalendarItem>& events, double room, Date now) {
  Views rows;
  for (const CalendarItem& event : events) {
    const double delay = 0.14 + 0.05 * double(rows.size());
    rows.push_back(eventRow(event, now).id(event.id).transition(notchContent(delay, UnitPoint::top)));
  }
  const double height = double(rows.size()) * (eventRowHeight + spacing) - spacing;
  return ScrollView(Axis::vertical, VStack({.spacing = spacing}, rows))
      .frame({.height = std::min(height, room)});
}

View agenda(const CalendarService& calendar, double room, Date now) {
  if (!calendar.authorized) {
    return Text(tr("Calendar access not allowed", "Calendrier non autorisé"))
        .font({11})
        .foreground(white(0.4));
  }
  if (calendar.events->empty()) {
    return Text(tr("Your day is clear ✨", "Ta journée est libre ✨")).font({12}).foreground(white(0.5));
  }
  return rows(calendar.events, room, now);
}

}  // namespace

View calendarList(const CalendarService& calendar) {
  return timeline(dayCheck, false, [&calendar](Date now) {
    return GeometryReader([&calendar, now](Size size) {
      const View events = agenda(calendar, size.height - headerHeight - spacing, now);
      return VStack({.spacing = spacing, .align = Align::leading}, {header(now), events})
          .frame({.width = size.width, .height = size.height, .align = UnitPoint::leading});
    });
  });
}

}  // namespace tarnwick
