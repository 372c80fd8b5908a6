#include "views/ClaudeView.h"

#include <algorithm>
#include <memory>

#include "base/L10n.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "views/ButtonStyles.h"
#include "views/CrabView.h"
#include "views/SessionRow.h"
#include "views/Transitions.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Animation listChange = spring(0.35, 0.8);

View noSessions() {
  return VStack({.spacing = 10},
      {
          crabView(CrabMood::idle).frame({.width = 52, .height = 32}),
          Text(tr("No Claude Code sessions", "Aucune session Claude Code"))
              .font({12, Weight::medium, Design::rounded})
              .foreground(white(0.45)),
      })
      .frame({.maxWidth = infinity, .maxHeight = infinity});
}

bool isClearable(const Session& session) {
  return session.phase == Phase::done || session.phase == Phase::idle;
}

/// What removes it from the list; none while it works or waits.
std::function<void()> forgetting(ClaudeService& claude, const Session& session) {
  if (!isClearable(session)) return {};
  return [&claude, id = session.id] { withAnimation(listChange, [&] { claude.forget(id); }); };
}

View list(ClaudeService& claude, TerminalVisits& terminals) {
  const auto sessions = std::make_shared<const std::vector<Session>>(claude.ordered());
  return ScrollView(Axis::vertical,
      LazyVStack({
          .count = sessions->size(),
          .length = sessionRowHeight,
          .spacing = 2,
          .key = [sessions](size_t row) { return (*sessions)[row].id; },
          .item =
              [sessions, &claude, &terminals](size_t row) {
                const Session& session = (*sessions)[row];
                return sessionRow(session, terminals, forgetting(claude, session))
                    .transition(notchContent(0.04 * double(row), UnitPoint::top));
              },
      }))
      .arrowKeys(Axis::vertical)
      .accessibility(Role::list, tr("Claude Code sessions", "Sessions Claude Code"));
}

View clearButton(ClaudeService& claude) {
  const std::string name = tr("Clear finished", "Effacer les terminées");
  return Button({.name = name,
      .label = Text(name).font({10, Weight::semibold}).foreground(white(0.6)),
      .style = notchPillButtonStyle(),
      .action = [&claude] { withAnimation(listChange, [&] { claude.clearFinished(); }); }});
}

}  // namespace

View claudeView(ClaudeService& claude, TerminalVisits& terminals) {
  return observing([&claude, &terminals] {
    const std::vector<Session>& sessions = claude.ordered();
    if (sessions.empty()) return noSessions().id("none").transition(Transition::opacity());
    std::vector<Phase> phases;
    for (const Session& session : sessions) phases.push_back(session.phase);
    View buttonRow;
    if (std::ranges::any_of(sessions, isClearable)) {
      buttonRow = HStack({}, {Spacer(), clearButton(claude)}).transition(Transition::opacity());
    }
    return VStack({.spacing = 6}, {list(claude, terminals), buttonRow})
        .animation(listChange, phases)
        .id("list")
        .transition(Transition::opacity());
  });
}

}  // namespace tarnwick
