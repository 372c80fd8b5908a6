#include "views/HomeView.h"

#include "ui/Dynamic.h"
#include "views/CalendarList.h"
#include "views/NowPlayingCard.h"
#include "views/Transitions.h"

namespace tarnwick {

using namespace ui;

View homeView(NotchModel& model, Namespace names) {
  return observing([&model, names] {
    const bool withCalendar = model.settings.calendarEnabled;
    View divider, agenda;
    if (withCalendar) {
      divider =
          Rectangle()
              .fill(white(0.1))
              .frame({.width = 1})
              .padding(Edge::vertical, 6)
              .transition(Transition::opacity());
      agenda =
          calendarList(model.calendar).frame({.width = 160}).transition(notchContent(0.12, UnitPoint::top));
    }
    const View card =
        nowPlayingCard(model.media, names).frame({.maxWidth = infinity, .maxHeight = infinity}).id("card");
    return HStack({.spacing = 18}, {card, divider, agenda}).animation(notchOpen, withCalendar);
  });
}

}  // namespace tarnwick
