#include "views/ExpandedBody.h"

#include "ui/View.h"
#include "views/AudioView.h"
#include "views/ClaudeView.h"
#include "views/HomeView.h"
#include "views/NotesView.h"
#include "views/Transitions.h"
#include "views/TrayView.h"

namespace tarnwick {

using namespace ui;

namespace {
View page(NotchModel& model, Namespace names, const TextMemory& notes) {
  switch (model.tab) {
    case Tab::home:
      return homeView(model, names);
    case Tab::audio:
      return audioView(model);
    case Tab::claude:
      return claudeView(model);
    case Tab::tray:
      return trayView(model);
    case Tab::notes:
      return notesView(model.notes, notes);
  }
  return {};
}

}  // namespace

View expandedBody(NotchModel& model, Namespace names, const TextMemory& notes) {
  const View shown =
      ZStack(UnitPoint::top, {page(model, names, notes)})
          .frame({.maxWidth = infinity, .maxHeight = infinity, .align = UnitPoint::top})
          .id(std::string(rawValue(model.tab)))
          .transition(tabSlide(model.tabDirection));
  return ZStack(UnitPoint::top, {shown})
      .padding(Edge::horizontal, 18)
      .padding(Edge::top, 6)
      .padding(Edge::bottom, 12);
}

}  // namespace tarnwick
