#pragma once
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace tarnwick {

/// The hardware indicators.
enum class HUDKind { volume, mute, brightness };

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

}  // namespace tarnwick
