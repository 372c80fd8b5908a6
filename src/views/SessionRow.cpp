#include "views/SessionRow.h"

#include "base/L10n.h"
#include "claude/ClaudeService.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "views/ButtonStyles.h"
#include "views/ClaudeStatusGlyph.h"
#include "views/CrabView.h"
#include "views/RequestDetail.h"
#include "views/SparkleSpinner.h"

namespace tarnwick {

using namespace ui;

namespace {

View phaseIndicator(Phase phase) {
  switch (phase) {
    case Phase::working:
      return sparkleSpinner(crabOrange).id("working").transition(Transition::opacity());
    case Phase::waiting:
      return raisedHand().id("waiting").transition(Transition::opacity());
    case Phase::done:
      return Symbol("checkmark.circle.fill")
          .foreground(colors::green)
          .id("done")
          .transition(Transition::scale(0.00001).combined(Transition::opacity()));
    case Phase::idle:
      return Symbol("moon.zzz.fill").foreground(white(0.4)).id("idle").transition(Transition::opacity());
  }
  return {};
}

std::string machineOf(const Session& session) {
  return session.elsewhere->empty() ? tr("elsewhere", "ailleurs") : *session.elsewhere;
}

/// What stands in the way of a visit.
std::string obstacle(const Session& session) {
  if (session.elsewhere)
    return tr("It runs on another machine or in a container",
        "Elle s'exécute sur une autre machine ou dans un conteneur");
  return tr("Its terminal cannot be brought forward", "Son terminal ne peut pas être mis au premier plan");
}

View texts(const Session& session) {
  View activity;
  if (!session.activity.empty()) {
    activity =
        Text(session.activity)
            .font({11, Weight::regular, Design::monospaced})
            .foreground(white(0.55))
            .truncated(Truncation::middle)
            .contentTransition(ContentTransition::opacity);
  }
  if (session.request())
    activity = HStack({.spacing = 8}, {activity.prioritized(), requestDetail(session.request()->detail)});
  View title = Text(session.project).font({13, Weight::semibold, Design::rounded});
  if (session.elsewhere) {
    title = HStack({.spacing = 6},
        {title.prioritized(),
            HStack({.spacing = 3},
                {Symbol("server.rack").font({11}), Text(machineOf(session)).font({11, Weight::medium})})
                .foreground(white(0.55))});
  }
  return VStack({.spacing = 1, .align = Align::leading}, {title, activity});
}

View chevron(const SessionRowActions& actions) {
  if (!actions.disclose) return {};
  return Button(
      {.name = actions.isDisclosed ? tr("Hide the request", "Masquer la demande")
                                   : tr("Show the request", "Afficher la demande"),
          .label = Symbol("chevron.down")
                       .font({16})
                       .foreground(white(0.6))
                       .rotation(actions.isDisclosed ? 180 : 0),
          .style = notchButtonStyle(22, 1.08),
          .action = actions.disclose})
      // Arrows go from row to row.
      .arrowKeys(Axis::horizontal);
}

/// What the pointer does with a row.
struct Pointed {
  bool hovering = false;
  /// Asked for when the pointer comes.
  bool canVisit = false;
  friend bool operator==(const Pointed&, const Pointed&) = default;
};

}  // namespace

std::string elapsedText(const Session& session, Date now) {
  if (!session.finishedAt) return ClaudeService::format(now - session.startedAt);
  const auto seconds = static_cast<long long>(now - *session.finishedAt);
  if (seconds <= 59) return tr("just now", "à l'instant");
  const std::string minutes = std::to_string(seconds / 60);
  return tr(minutes + " min ago", "il y a " + minutes + " min");
}

View sessionRow(const Session& session, TerminalVisits& terminals, SessionRowActions actions) {
  return stateful(Pointed(), [session, &terminals, actions = std::move(actions)](State<Pointed> pointed) {
    const bool hovering = pointed.get().hovering;
    const bool canVisit = pointed.get().canVisit && *terminals.failed != session.id;
    View arrow;
    if (hovering && canVisit) {
      arrow = Symbol("arrow.up.forward.square")
                  .font({12})
                  .foreground(white(0.6))
                  .transition(Transition::opacity());
    }
    View row =
        HStack({.spacing = 10},
            {
                ZStack(UnitPoint::center, {phaseIndicator(session.phase)}).frame({.width = 20}),
                texts(session),
                Spacer(),
                everySecond([session](Date now) {
                  return Text(elapsedText(session, now))
                      .font({11, Weight::medium})
                      .monospacedDigits()
                      .foreground(white(0.45));
                }),
                chevron(actions),
                arrow,
            })
            .padding(Edge::horizontal, 10)
            .frame({.height = sessionRowHeight})
            .background(RoundedRectangle(10).fill(white(hovering ? 0.07 : 0.03)))
            .animation(easeOut(0.15), std::pair(hovering, canVisit))
            .contentShape(RoundedRectangle(10))
            .onHover([session, &terminals, pointed](bool isInside) {
              pointed.set({isInside, isInside && terminals.canVisit(session)});
            })
            .onTap([session, &terminals] { terminals.visit(session); }, session.process.has_value())
            .focusable()
            .accessibility(session.process ? Role::button : Role::text,
                session.project + (session.elsewhere ? " (" + machineOf(session) + ")" : "") + ": " +
                    session.activity);
    if (actions.forget) row = row.onKey(Key::erase, actions.forget);
    if (actions.disclose) row = row.onKey(actions.isDisclosed ? Key::left : Key::right, actions.disclose);
    if (!hovering || canVisit) return row;
    return row.tooltip(obstacle(session));
  });
}

}  // namespace tarnwick
