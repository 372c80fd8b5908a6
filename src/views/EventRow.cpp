#include "views/EventRow.h"

#include "base/L10n.h"
#include "base/LocalTime.h"
#include "ui/Dynamic.h"

namespace tarnwick {

using namespace ui;

std::string eventTime(const CalendarItem& event, Date now) {
  const bool tomorrow = startOfDay(event.start) > startOfDay(now);
  const std::string day = tomorrow ? tr("Tomorrow · ", "Demain · ") : "";
  if (event.allDay) return day + tr("All day", "Toute la journée");
  return day + shortTime(event.start) + " – " + shortTime(event.end);
}

View eventRow(const CalendarItem& event, Date now) {
  return stateful(false, [event, time = eventTime(event, now)](State<bool> hovering) {
    const View title = Text(event.title).font({12, Weight::medium});
    const View when = Text(time).font({10}).foreground(white(0.5));
    const View texts =
        VStack({.spacing = 1, .align = Align::leading}, {title, when})
            .frame({.maxWidth = infinity, .align = UnitPoint::leading});
    return HStack({.spacing = 8}, {Capsule().fill(event.color).frame({.width = 3, .height = 24}), texts})
        .padding(Edge::horizontal, 4)
        .frame({.height = eventRowHeight})
        .background(RoundedRectangle(8).fill(white(hovering ? 0.07 : 0)))
        .animation(easeOut(0.15), hovering.get())
        .onHover(hovering)
        .accessibility(Role::text, event.title + ", " + time);
  });
}

}  // namespace tarnwick
