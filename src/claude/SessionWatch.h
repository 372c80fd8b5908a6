#pragma once
#include <map>
#include <set>
#include <string>

#include "claude/ClaudeService.h"
#include "platform/ForeignProcesses.h"
#include "platform/GrowingFiles.h"

namespace tarnwick {

/// Learns of the sessions what no hook tells: that a permission was granted, from the command that then runs;
/// that the user has refused or interrupted, from the transcript; that the program has ended. Where none of
/// it can be known, the hooks' events are all there is.
class SessionWatch {
 public:
  /// All arguments must outlive it.
  SessionWatch(ClaudeService& claude, Scheduler& scheduler, ForeignProcesses& processes, GrowingFiles& files);

 private:
  struct Watched {
    std::optional<ForeignProcess> process;
    Subscription end;
    /// Empty while it is not followed.
    FilePath transcript;
    Subscription lines;
    /// What Claude Code says itself of what it is doing. Empty while it is not followed.
    FilePath status;
    Subscription statusChanges;
    bool wasBusy = false;
    Task rest;
    /// The commands that are waited for.
    std::vector<Session::Request> commands;
    /// The children that none of them is.
    std::set<int32_t> children;
    /// When they are looked for next, as of `uptime`, and how long that is after the last time.
    double due = 0, pause = 0;
  };

  void update();
  void update(const Session& session, Watched& watched);
  void followStatus(const Session& session, Watched& watched);
  void await(const Session& session, Watched& watched);
  void lookLater();
  void look();
  std::optional<Session::Request> grantedCommand(Watched& watched);

  ClaudeService& claude_;
  Scheduler& scheduler_;
  ForeignProcesses& processes_;
  GrowingFiles& files_;
  std::map<std::string, Watched> watched_;
  Task look_;
  Subscription changes_;
};

}  // namespace tarnwick
