#pragma once
#include <optional>

#include "linux/bus/RemoteProperties.h"
#include "platform/PowerSources.h"

namespace tarnwick {

/// Battery and charger as UPower knows them, and the power-saver profile of the power profiles daemon as the
/// low power mode. Several batteries of the machine count as the one that UPower makes of them for display.
class UPowerSources : public PowerSources {
 public:
  explicit UPowerSources(MessageBus& bus);

  std::optional<std::vector<PowerSource>> all() const override;
  bool isLowPowerModeEnabled() const override { return lowPowerMode_.value_or(false); }
  Subscription observe(std::function<void()> onChange) override {
    return sources_.observe(std::move(onChange));
  }
  Subscription observeLowPowerMode(std::function<void()> onChange) override {
    return mode_.observe(std::move(onChange));
  }

 private:
  void profileChanged();

  RemoteProperties manager_, display_, profiles_;
  /// None before it is known; it outlives restarts of the daemon.
  std::optional<bool> lowPowerMode_;
  ObservableObject sources_;
  ObservableObject mode_;
};

}  // namespace tarnwick
