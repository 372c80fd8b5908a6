#include "cli/Caller.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

#include "base/Descriptor.h"
#include "base/Environment.h"
#include "base/TerminalVariables.h"

namespace tarnwick {
namespace {

constexpr std::array<std::string_view, 9> shells{
    "sh", "bash", "dash", "zsh", "fish", "ksh", "mksh", "ash", "busybox"};
/// Claude Code runs hooks through a shell, which may have been told to run another.
constexpr int mostShells = 8;

struct Process {
  std::string name;
  pid_t parent;
};

/// What /proc/…/stat says, in the form of proc(5).
std::optional<Process> processWith(pid_t number) {
  const std::string path = "/proc/" + std::to_string(number) + "/stat";
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  char text[512];
  const ssize_t length = file < 0 ? -1 : ::read(file, text, sizeof text);
  if (length <= 0) return std::nullopt;
  // A name may hold brackets and blanks; nothing behind it does. Behind it come a blank, the state, a blank.
  const std::string_view line(text, static_cast<size_t>(length));
  const size_t begin = line.find('('), end = line.rfind(')');
  if (begin == line.npos || end == line.npos || line.size() < end + 5) return std::nullopt;
  Process process{std::string(line.substr(begin + 1, end - begin - 1)), 0};
  const auto parsed = std::from_chars(line.data() + end + 4, line.data() + line.size(), process.parent);
  return parsed.ec == std::errc() ? std::optional(process) : std::nullopt;
}

}  // namespace

void addCaller(StringMap& event) {
  for (const char* name : terminalVariables) {
    const std::string_view value = environment(name);
    if (!value.empty() && value.size() <= longestTerminalValue) event[name] = value;
  }
  pid_t number = ::getppid();
  for (int step = 0; step < mostShells; ++step) {
    const auto process = processWith(number);
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
