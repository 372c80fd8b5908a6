#pragma once
#include <functional>
#include <string>

#include "claude/Session.h"
#include "claude/TerminalVisits.h"
#include "ui/View.h"

namespace tarnwick {

/// Height of a row in the list of sessions, in points.
inline constexpr double sessionRowHeight = 40;

/// What can be done with a row; each may be absent.
struct SessionRowActions {
  /// What the key Delete does on it.
  std::function<void()> forget = {};
  /// Shows the request of its session, or hides it again; also by the keys right and left.
  std::function<void()> disclose = {};
  bool isDisclosed = false;
};

/// One Claude Code session: what it is up to, its project and activity, and since when. A click goes to
/// its terminal.
ui::View sessionRow(const Session& session, TerminalVisits& terminals, SessionRowActions actions = {});

/// How long the session has been at it, or how long ago it finished.
std::string elapsedText(const Session& session, Date now);

}  // namespace tarnwick
