#pragma once
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Adds to a hook event who has run the hook: `process`, the number of the first ancestor that is no shell,
/// which is Claude Code, and `process_namespace`, in which that number counts; and what the environment tells
/// of the terminal, as `terminalVariables`. What cannot be known is left out.
void addCaller(StringMap& event);

}  // namespace tarnwick
