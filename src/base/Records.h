#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "base/Color.h"
#include "base/Uuid.h"

/// The small values that services, model and views pass around.
namespace tarnwick {

/// A file on this machine: its absolute path.
using FilePath = std::string;

/// The mascot's moods.
enum class CrabMood { idle, working, waiting, happy };

/// The hardware indicators.
enum class HUDKind { volume, mute, brightness };

/// The expanded body's tabs, in the order of the tab bar.
enum class Tab { home, audio, claude, tray, notes };
inline constexpr std::array allTabs{Tab::home, Tab::audio, Tab::claude, Tab::tray, Tab::notes};
/// "home", "audio", "claude", "tray" or "notes".
std::string_view rawValue(Tab tab);
/// The tab with exactly that raw value.
std::optional<Tab> tabNamed(std::string_view rawValue);

/// What the notch shows.
enum class Presentation { transient, claude, nowPlaying, idle, banner, expanded };

/// A short-lived indicator in the wings.
struct Transient {
  /// Volume, mute or brightness; `value` is the level, 0…1.
  struct Hud {
    HUDKind kind;
    double value;
    friend bool operator==(const Hud&, const Hud&) = default;
  };
  /// The charger was connected or disconnected; `level` is the battery's percentage.
  struct Power {
    bool charging;
    int level;
    friend bool operator==(const Power&, const Power&) = default;
  };
  struct LowPowerMode {
    bool on;
    friend bool operator==(const LowPowerMode&, const LowPowerMode&) = default;
  };
  /// A Bluetooth device came or went; `battery` in percent.
  struct Device {
    std::string name;
    std::string symbol;
    std::optional<int> battery;
    bool connected;
    friend bool operator==(const Device&, const Device&) = default;
  };

  std::variant<Hud, Power, LowPowerMode, Device> value;

  static Transient hud(HUDKind kind, double value) { return {Hud{kind, value}}; }
  static Transient power(bool charging, int level) { return {Power{charging, level}}; }
  static Transient lowPowerMode(bool on) { return {LowPowerMode{on}}; }
  static Transient device(std::string name, std::string symbol, std::optional<int> battery, bool connected) {
    return {Device{std::move(name), std::move(symbol), battery, connected}};
  }

  /// Tells one indicator from the next: an indicator with the same key is updated in place.
  std::string key() const;
  friend bool operator==(const Transient&, const Transient&) = default;
};

/// A card that drops out of the notch. Two banners with the same texts are still different ones.
struct Banner {
  Uuid id = Uuid::random();
  /// Symbol name.
  std::string icon;
  Color tint;
  std::string title;
  std::string subtitle;
  /// When present, the mascot is drawn in this mood instead of the icon.
  std::optional<CrabMood> crab;

  friend bool operator==(const Banner&, const Banner&) = default;
};

}  // namespace tarnwick
