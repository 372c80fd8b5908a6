#pragma once
#include <optional>
#include <string>

#include "base/Date.h"

namespace tarnwick {

/// What a Claude Code session is up to.
enum class Phase { idle, working, waiting, done };

/// One Claude Code session as far as its hook events tell.
struct Session {
  /// Claude Code's identifier.
  std::string id;
  /// The name of the folder that it works in.
  std::string project;
  Phase phase = Phase::idle;
  /// One line: what it is doing. Empty for a new session.
  std::string activity;
  /// Start of the current piece of work.
  Date startedAt;
  /// When the last piece of work ended; none while the user's prompt is being worked on.
  std::optional<Date> finishedAt;
  /// When its last event was handled.
  Date updatedAt;
  /// Since when it rests because nothing was heard of it.
  std::optional<Date> restingSince;
  /// What exactly the tool would do for which it waits for permission, as far as that is known; none while it
  /// does not wait for one.
  std::optional<std::string> request = {};

  friend bool operator==(const Session&, const Session&) = default;
};

}  // namespace tarnwick
