#pragma once
#include "claude/ClaudeService.h"
#include "claude/TerminalVisits.h"
#include "ui/View.h"

namespace tarnwick {

/// The page of all Claude Code sessions, and a button to clear away those that neither work nor wait.
ui::View claudeView(ClaudeService& claude, TerminalVisits& terminals);

}  // namespace tarnwick
