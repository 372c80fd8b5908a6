#include "views/ClaudeView.h"

#include <algorithm>
#include <memory>

#include "base/L10n.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "views/ButtonStyles.h"
#include "views/CrabView.h"
#include "views/PermissionView.h"
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

/// What shows and hides the request of a session; none where it cannot be answered here.
std::function<void()> disclosing(PermissionService& permissions, const Session& session) {
  if (!PermissionService::requestOf(session)) return {};
  return [&permissions, id = session.id] {
    withAnimation(
        listChange, [&] { permissions.disclosed = *permissions.disclosed == id ? std::string() : id; });
  };
}

/// The place in the list of the session whose request is shown.
std::optional<size_t> disclosedRow(
    const std::vector<Session>& sessions, const PermissionService& permissions) {
  const auto found = std::ranges::find(sessions, *permissions.disclosed, &Session::id);
  const bool isShown = found != sessions.end() && PermissionService::requestOf(*found);
  return isShown ? std::optional(size_t(found - sessions.begin())) : std::nullopt;
}

View item(NotchModel& model, const Session& session, size_t row, bool isDisclosed) {
  const View header = sessionRow(session, model.terminals,
      {.forget = forgetting(model.claude, session),
          .disclose = disclosing(model.permissions, session),
          .isDisclosed = isDisclosed});
  View request;
  if (isDisclosed) {
    request = permissionView(model.permissions, *PermissionService::requestOf(session), std::to_string(row))
                  .transition(Transition::opacity());
  }
  return VStack({}, {header, request})
      .background(RoundedRectangle(10).fill(white(isDisclosed ? 0.04 : 0)))
      .transition(notchContent(0.04 * double(row), UnitPoint::top));
}

View list(NotchModel& model, std::optional<size_t> disclosed) {
  const auto sessions = std::make_shared<const std::vector<Session>>(model.claude.ordered());
  return ScrollView(Axis::vertical,
      LazyVStack({
          .count = sessions->size(),
          .length = sessionRowHeight,
          .longer = disclosed,
          .excess = disclosed ? permissionHeight : 0,
          .spacing = 2,
          .key = [sessions](size_t row) { return (*sessions)[row].id; },
          .item = [sessions, &model, disclosed](
                      size_t row) { return item(model, (*sessions)[row], row, disclosed == row); },
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

View claudeView(NotchModel& model) {
  return observing([&model] {
    const std::vector<Session>& sessions = model.claude.ordered();
    if (sessions.empty()) return noSessions().id("none").transition(Transition::opacity());
    std::vector<Phase> phases;
    for (const Session& session : sessions) phases.push_back(session.phase);
    const auto disclosed = disclosedRow(sessions, model.permissions);
    View buttonRow;
    // A request needs the room.
    if (!disclosed && std::ranges::any_of(sessions, isClearable)) {
      buttonRow = HStack({}, {Spacer(), clearButton(model.claude)}).transition(Transition::opacity());
    }
    return VStack({.spacing = 6}, {list(model, disclosed), buttonRow})
        .animation(listChange, phases)
        .id("list")
        .transition(Transition::opacity());
  });
}

}  // namespace tarnwick
