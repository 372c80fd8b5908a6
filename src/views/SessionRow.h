#pragma once
#include <functional>
#include <string>

#include "claude/Session.h"
#include "claude/TerminalVisits.h"
#include "ui/View.h"

namespace tarnwick {

/// Height of a row in the list of sessions, in points.
inline constexpr double sessionRowHeight = 40;

/// One Claude Code session: what it is up to, its project and activity, and since when. A click goes to
/// its terminal.
/// @param forget what the key Delete does on it; may be absent
ui::View sessionRow(const Session& session, TerminalVisits& terminals, std::function<void()> forget = {});

/// How long the session has been at it, or how long ago it finished.
std::string elapsedText(const Session& session, Date now);

}  // namespace tarnwick
