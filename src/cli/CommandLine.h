#pragma once
#include <span>
#include <string_view>

namespace tarnwick {

/// What the program was started to do.
enum class Role {
  hook,
  installHooks,
  uninstallHooks,
  snapshot,
  showcase,
  demo,
  help,
  version,
  settings,
  open,
  close,
  toggle,
  next,
  volume,
  brightness,
  sessions,
  followSessions,
  listen,
  application
};

/// The role that the arguments select, and that role's values. Switches are whole arguments, matched exactly,
/// anywhere in the list; unknown arguments are ignored.
struct CommandLine {
  Role role = Role::application;
  /// The snapshot's folder, the showcase command, the socket to listen at, the raw value of the tab to
  /// open, or which way a level goes; the last two are absent where they are none that is known.
  std::string_view value;
  /// The showcase command's argument; empty when there is none.
  std::string_view argument;

  /// @param arguments the process's arguments, the program's name included; they must outlive the result.
  static CommandLine parse(std::span<const char* const> arguments);
};

/// The text of `--help`.
extern const char* const helpText;

}  // namespace tarnwick
