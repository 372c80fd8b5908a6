#pragma once
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "json/JsonValue.h"

namespace tarnwick {

/// Adds the program's hook command to Claude Code's settings file and removes it again; all else in the file
/// is kept. Errors go to standard error, results to standard output. Beside the file lie two copies of it: as
/// it was before the last change, and as it was before the first.
class HookInstaller {
 public:
  /// What the file holds.
  struct Settings {
    JsonObject values;
    /// Whether U+FEFF stands at its head.
    bool hasByteOrderMark = false;
  };

  /// The hook events that the program wants to hear of.
  static constexpr std::array<std::string_view, 9> events{"SessionStart", "UserPromptSubmit", "PreToolUse",
      "PermissionRequest", "PostToolUse", "Notification", "Stop", "StopFailure", "SessionEnd"};
  /// How long a hook may take, in seconds: one that waits for the user's answer, and any other.
  static constexpr int permissionTimeout = 600, timeout = 5;
  /// The events that take a tool matcher.
  static constexpr std::array<std::string_view, 3> toolEvents{
      "PreToolUse", "PermissionRequest", "PostToolUse"};

  /// @param home the user's home folder, without a slash at its end.
  /// @param executable the absolute path of the program to run at each hook event.
  HookInstaller(const std::string& home, std::string executable)
      : folder_(home + "/.claude"), path_(folder_ + "/settings.json"), executable_(std::move(executable)) {}

  /// The hook command, quoted for the shell.
  std::string command() const;

  bool install() const;
  bool uninstall() const;
  /// Whether the settings file mentions the hook command.
  bool isInstalled() const;

  /// Reads the settings file, after copying it. An absent file is an empty object; nothing is returned, after
  /// a message, when the file cannot be read, copied or understood.
  std::optional<Settings> load() const;
  /// Replaces the settings file. @return false, after a message, when it cannot be written.
  bool save(Settings settings) const;
  /// The settings with one group of ours at the end of every event; a `hooks` or an event of another shape
  /// than Claude Code's is replaced.
  JsonObject withOurs(JsonObject settings) const;
  /// The settings without what is ours, and without `hooks` when nothing is left in it.
  static JsonObject withoutOurs(JsonObject settings);
  /// The settings' `hooks` without the program's own entries, the groups that held nothing else, and the
  /// events that are left without groups.
  static JsonObject removingOurs(JsonObject hooks);

 private:
  std::error_code backUp(std::string_view contents) const;
  JsonObject ourGroup(std::string_view event) const;

  std::string folder_;
  std::string path_;
  std::string executable_;
};

}  // namespace tarnwick
