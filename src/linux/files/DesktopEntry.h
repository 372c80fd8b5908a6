#pragma once
#include <optional>
#include <string>
#include <vector>

namespace tarnwick {

/// A program as its desktop entry describes it.
struct DesktopEntry {
  /// Absolute.
  std::string path;
  /// The file's name without its ending.
  std::string id;
  /// A command line with placeholders.
  std::string exec;
  /// Name of an icon of the theme, or an absolute path.
  std::string icon;
  /// What its windows call their class.
  std::string windowClass;
  /// Neither hidden nor, for the session's start, switched off.
  bool isEnabled = true;

  static std::optional<DesktopEntry> read(const std::string& path);
  /// The entry of that name in the first folder that has one.
  static std::optional<DesktopEntry> named(const std::string& id);
  /// The entry that starts the program of that file name.
  static std::optional<DesktopEntry> starting(const std::string& program);

  /// The command line without placeholders, taken apart; empty when there is none.
  std::vector<std::string> command() const;
};

/// The folders "applications" and "icons" are in, the user's own first.
std::vector<std::string> dataFolders();

}  // namespace tarnwick
