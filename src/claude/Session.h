#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Date.h"
#include "base/FilePath.h"
#include "platform/ForeignProcesses.h"
#include "platform/NotificationCenter.h"

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
  /// When it came into that phase.
  Date phaseSince = {};
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
  /// A tool's call that waits for permission, or for the answer to its question.
  struct Request {
    std::string tool;
    /// What exactly it would do, in one line; empty where that is not known.
    std::string detail;
    /// What is waited for, in one line.
    std::string text;
    /// Of the request that can be answered here; 0: it is answered in the terminal.
    uint64_t number = 0;
    friend bool operator==(const Request&, const Request&) = default;
  };
  /// Those that it waits for, in the order in which they were made.
  std::vector<Request> requests = {};
  /// The name of the machine or the container in which it runs, where that is not this one; empty where it
  /// has not told its name. Then it has no process, no transcript and no terminal here, and is asked for
  /// nothing.
  std::optional<std::string> elsewhere = {};
  /// The Claude Code process, where it has told.
  std::optional<ForeignProcess> process = {};
  /// What is said in the session, line by line as JSON; empty where it has not told.
  FilePath transcript = {};
  /// What its environment tells of its terminal, by the names of the variables. Others have written it.
  StringMap terminal = {};

  /// The one that it waits for first; null where it waits for none.
  const Request* request() const { return requests.empty() ? nullptr : &requests.front(); }

  friend bool operator==(const Session&, const Session&) = default;
};

}  // namespace tarnwick
