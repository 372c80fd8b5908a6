#pragma once
#include "base/Observed.h"
#include "base/UserDefaults.h"

namespace tarnwick {

/// The user's preferences: switches that read and write like a `bool`, and texts. They survive restarts.
class AppSettings : public ObservableObject {
 public:
  /// One switch. An assignment is stored at once, whether or not it changes anything; observers are told only
  /// when it does.
  class Flag {
   public:
    Flag(AppSettings& owner, const char* key, bool fallback);
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag& other) { return *this = other.value_; }
    Flag& operator=(bool value);
    operator bool() const { return value_; }

   private:
    AppSettings& owner_;
    const char* key_;
    Observed<bool> value_;
  };

  /// One text, empty unless it is set. It is stored like a switch.
  class Text {
   public:
    Text(AppSettings& owner, const char* key);
    Text(const Text&) = delete;
    Text& operator=(const Text& other) { return *this = *other.value_; }
    Text& operator=(const std::string& value);
    const std::string& operator*() const { return *value_; }

   private:
    AppSettings& owner_;
    const char* key_;
    Observed<std::string> value_;
  };

  /// Reads all switches; one that is missing or no boolean in `defaults` takes its default value. `defaults`
  /// must outlive the settings.
  explicit AppSettings(UserDefaults& defaults) : defaults_(defaults) {}

 private:
  // Before the switches, which read it while they are made.
  UserDefaults& defaults_;

 public:
  /// The notch opens when the pointer rests on it.
  Flag expandOnHover{*this, "expandOnHover.v2", false};
  /// On a screen without a camera, the pointer against the screen's edge brings the notch that cannot be seen.
  Flag comesAtEdge{*this, "comesAtEdge", true};
  /// No session and now-playing wings while another program fills the screen.
  Flag hideInFullscreen{*this, "hideInFullscreen", true};
  Flag haptics{*this, "haptics", true};
  Flag showNowPlaying{*this, "showNowPlaying", true};
  /// The notch takes the place of the desktop's own volume and brightness displays.
  Flag replaceHUD{*this, "replaceHUD", true};
  Flag batteryAlerts{*this, "batteryAlerts", true};
  Flag bluetoothAlerts{*this, "bluetoothAlerts", true};
  Flag calendarEnabled{*this, "calendarEnabled", true};
  Flag claudeSounds{*this, "claudeSounds", true};
  /// Permissions that Claude Code asks for can be given in the notch.
  Flag answerPermissions{*this, "answerPermissions", true};
  /// Keys of the whole session, as of `KeyChord`, for the commands of these names.
  Text toggleShortcut{*this, "toggleShortcut"};
  Text nextShortcut{*this, "nextShortcut"};
};

}  // namespace tarnwick
