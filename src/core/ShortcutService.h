#pragma once
#include <map>
#include <string>
#include <vector>

#include "base/AppSettings.h"
#include "platform/GlobalShortcuts.h"

namespace tarnwick {

/// The user's own keys for what the program can do: sets those that the preferences name, and follows them.
class ShortcutService {
 public:
  struct Action {
    /// As of `openNotification`.
    std::string name;
    std::string title;
    AppSettings::Text& chord;
  };

  /// Both must outlive it. @param act is told the name of an action whose keys were pressed
  ShortcutService(
      AppSettings& settings, GlobalShortcuts& shortcuts, std::function<void(const std::string&)> act);

  /// Those that there can be keys for, with titles in the language of the moment.
  std::vector<Action> actions() const;
  GlobalShortcuts& shortcuts() { return shortcuts_; }

  /// Sets what the preferences name. Costs nothing where they name none.
  void start();
  /// While new ones are recorded.
  void pause(bool paused);
  /// Gives an action these keys, and takes them from another that has them; none: it has none.
  void assign(const std::string& action, const std::optional<KeyChord>& chord);

 private:
  void update();

  AppSettings& settings_;
  GlobalShortcuts& shortcuts_;
  bool isPaused_ = false;
  std::map<std::string, GlobalShortcuts::Wanted> set_;
  Subscription changes_;
};

}  // namespace tarnwick
