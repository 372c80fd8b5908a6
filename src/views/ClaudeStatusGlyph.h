#pragma once
#include "claude/ClaudeService.h"
#include "ui/View.h"

namespace tarnwick {

/// What the sessions are up to, at a glance: a raised hand when one waits for the user, else a spinner, with
/// the number of working sessions when there are several.
ui::View claudeStatusGlyph(const ClaudeService& claude);

/// The mascot in the mood that the sessions put it in.
ui::View statusCrab(const ClaudeService& claude);

/// A raised hand that calls for the user.
ui::View raisedHand();

/// The mood in which the mascot stands for all sessions.
CrabMood crabMood(const ClaudeService& claude);

}  // namespace tarnwick
