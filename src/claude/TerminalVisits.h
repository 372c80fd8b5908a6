#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Observed.h"
#include "base/Scheduler.h"
#include "claude/Session.h"
#include "platform/ChildProcesses.h"
#include "platform/WindowActivation.h"

namespace tarnwick {

/// Goes to the terminals in which sessions run: to the window, and in it to the tab or pane, through whatever
/// multiplexers lie between. What sessions tell of their terminals others have written: it is used where it
/// has the right shape, and never reaches a shell.
class TerminalVisits : public ObservableObject {
 public:
  /// All arguments must outlive it.
  TerminalVisits(
      Scheduler& scheduler, ForeignProcesses& processes, ChildProcesses& programs, WindowActivation& windows);

  /// The session whose terminal could not be reached when it was last tried; empty: it could.
  Observed<std::string> failed{*this};
  /// Called just before the window comes forward, to leave it the keyboard.
  std::function<void()> onLeave;

  /// Whether that session's terminal can be reached, as far as it can be told without asking other programs.
  bool canVisit(const Session& session);
  /// Goes there, at once or soon. @return false when it cannot be done; then nothing has happened
  bool visit(const Session& session);

 private:
  struct Place {
    ForeignProcess process;
    const StringMap& terminal;
  };
  struct Pane {
    std::string socket, name;
  };

  std::optional<Pane> tmuxPane(const Place& place);
  std::optional<uint32_t> windowOf(const Place& place);
  bool go(const Place& place, int level);
  void askTmux(const Pane& pane, uint64_t space, int level);
  void selectTab(const StringMap& terminal);
  void run(
      const std::string& program, const std::vector<std::string>& arguments,
      std::function<void(const std::string& output)> then = [](const std::string&) {});
  bool fail();

  Scheduler& scheduler_;
  ForeignProcesses& processes_;
  ChildProcesses& programs_;
  WindowActivation& windows_;
  /// The one that is being visited.
  std::string session_;
  bool isAsking_ = false;
  std::vector<std::shared_ptr<std::unique_ptr<ChildProcess>>> running_;
  Task patience_;
};

}  // namespace tarnwick
