#pragma once
#include <functional>
#include <set>

#include "base/AppSettings.h"
#include "base/Banner.h"
#include "base/Observed.h"
#include "base/Transient.h"
#include "platform/PowerSources.h"
#include "platform/SoundPlayer.h"

namespace tarnwick {

/// The machine's own battery, its charger and the low power mode: keeps what the views show, tells of the
/// charger's coming and going, and warns when the battery runs low.
class PowerService : public ObservableObject {
 public:
  /// The ports must outlive the service.
  PowerService(PowerSources& sources, SoundPlayer& sounds) : sources_(sources), sounds_(sounds) {}

  /// Percent.
  Observed<int> level{*this};
  Observed<bool> pluggedIn{*this};
  Observed<bool> charging{*this};
  /// A battery was found; it stays true.
  Observed<bool> hasBattery{*this};

  /// Asks to show an indicator.
  std::function<void(const Transient&)> onTransient;
  /// Asks to present a banner for a number of seconds.
  std::function<void(const Banner&, double)> onBanner;

  /// Begins to follow the battery. The state that is found first is not announced. `settings` must outlive
  /// the service.
  void start(const AppSettings& settings);

 private:
  void read();
  void readBattery(const PowerSource& battery);
  void warnIfLow(int newLevel, bool announce);
  bool alertsAllowed() const { return !settings_ || settings_->batteryAlerts; }

  PowerSources& sources_;
  SoundPlayer& sounds_;
  const AppSettings* settings_ = nullptr;
  /// The thresholds, in percent, that were warned of since the charger was last connected.
  std::set<int> warnedAt_;
  Subscription sourcesSubscription_;
  Subscription modeSubscription_;
};

}  // namespace tarnwick
