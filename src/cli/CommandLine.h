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
  sessions,
  followSessions,
  listen,
  application
};

/// The role that the arguments select, and that role's values. Switches are whole arguments, matched exactly,
/// anywhere in the list; unknown arguments are ignored.
struct CommandLine {
  Role role = Role::application;
  /// The snapshot's folder, the showcase command, the socket to listen at, or the raw value of the tab to
  /// open; that may be absent.
  std::string_view value;
  /// The showcase command's argument; empty when there is none.
  std::string_view argument;

  /// @param arguments the process's arguments, the program's name included; they must outlive the result.
  static CommandLine parse(std::span<const char* const> arguments);
};

/// The text of `--help`.
extern const char* const helpText;

}  // namespace tarnwick
