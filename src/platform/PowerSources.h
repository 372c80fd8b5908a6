#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "base/ObservableObject.h"

namespace tarnwick {

/// Something that the machine can run on.
struct PowerSource {
  /// The machine's own battery, and not that of a mouse or an emergency supply.
  bool isInternalBattery = false;
  /// In any unit, the same for both.
  double currentCapacity = 0;
  double maxCapacity = 100;
  /// The charger feeds the machine.
  bool onACPower = false;
  bool isCharging = false;
};

/// Batteries, charger and the saving of power.
class PowerSources {
 public:
  virtual ~PowerSources() = default;

  /// None while they are not known.
  virtual std::optional<std::vector<PowerSource>> all() const = 0;
  /// The machine trades speed for a longer running time.
  virtual bool isLowPowerModeEnabled() const = 0;

  /// Calls `onChange` on the main thread when the sources became known or differ from before.
  virtual Subscription observe(std::function<void()> onChange) = 0;
  /// Calls `onChange` on the main thread when the low power mode was switched, but not when it becomes known.
  virtual Subscription observeLowPowerMode(std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
