#pragma once
#include <string>
#include <vector>

#include "claude/Session.h"

namespace tarnwick {

/// The sessions in their order as one line of JSON: an array of objects with the strings "phase" ("waiting",
/// "working", "done" or "idle"), "project" and "activity", of those that run elsewhere "machine", and "since"
/// in whole seconds since 1970: the start of the work of one that works, and for others when they came into
/// their phase.
std::string sessionsJson(const std::vector<Session>& sessions);

}  // namespace tarnwick
