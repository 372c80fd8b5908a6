#pragma once
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "base/ObservableObject.h"

namespace tarnwick {

using StringMap = std::map<std::string, std::string>;

inline std::optional<std::string> valueOf(const StringMap& map, const std::string& key) {
  const auto found = map.find(key);
  return found == map.end() ? std::nullopt : std::optional(found->second);
}

/// Notifications broadcast between processes of the same user session, fire and forget.
class NotificationCenter {
 public:
  virtual ~NotificationCenter() = default;
  /// Calls `receive` on the main thread with the payload of each notification of that name. A payload that is
  /// not a map from string to string arrives as an empty map.
  virtual Subscription observe(const std::string& name, std::function<void(const StringMap&)> receive) = 0;
};

/// Names of the notifications.
inline constexpr const char* eventNotification = "dev.tarnwick.event";
/// Its key with the name of the machine or container of a session that does not run on this one, and only of
/// such a session.
inline constexpr const char* machineKey = "machine";
inline constexpr const char* showcaseNotification = "dev.tarnwick.showcase";
/// The program was started again. Its key "window" says what is wanted: "settings", or else the notch; there
/// "action" may be "open", "close", "toggle" or "next", for somebody at the keyboard, and "tab" the raw value
/// of a tab; or "volume" or "brightness", with "way" "up", "down" or "mute", to do what the key would.
inline constexpr const char* openNotification = "dev.tarnwick.open";

}  // namespace tarnwick
