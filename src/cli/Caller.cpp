#include "cli/Caller.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "base/Environment.h"
#include "base/ProcessStatus.h"
#include "base/TerminalVariables.h"

namespace tarnwick {
namespace {

constexpr std::array<std::string_view, 9> shells{
    "sh", "bash", "dash", "zsh", "fish", "ksh", "mksh", "ash", "busybox"};
/// Claude Code runs hooks through a shell, which may have been told to run another.
constexpr int mostShells = 8;

}  // namespace

void addCaller(StringMap& event) {
  for (const char* name : terminalVariables) {
    const std::string_view value = environment(name);
    if (!value.empty() && value.size() <= longestTerminalValue) event[name] = value;
  }
  pid_t number = ::getppid();
  for (int step = 0; step < mostShells; ++step) {
    const auto process = ProcessStatus::of(number);
    if (!process) return;
    if (std::ranges::find(shells, process->name) == shells.end()) {
      struct stat space;
      if (number <= 1 || ::stat("/proc/self/ns/pid", &space) != 0) return;
      event["process"] = std::to_string(number);
      event["process_namespace"] = std::to_string(space.st_ino);
      return;
    }
    number = process->parent;
  }
}

}  // namespace tarnwick
