#pragma once
#include <functional>

#include "base/AppSettings.h"
#include "base/Observed.h"
#include "base/Records.h"

namespace tarnwick {

/// The battery and the charger. It does not read them yet: the machine counts as one without a battery.
class PowerService : public ObservableObject {
 public:
  /// Percent.
  Observed<int> level{*this};
  Observed<bool> pluggedIn{*this};
  Observed<bool> charging{*this};
  Observed<bool> hasBattery{*this};

  /// Asks to show an indicator.
  std::function<void(const Transient&)> onTransient;
  /// Asks to present a banner for a number of seconds.
  std::function<void(const Banner&, double)> onBanner;

  /// `settings` must outlive the service.
  void start(const AppSettings& settings) { settings_ = &settings; }

 private:
  const AppSettings* settings_ = nullptr;
};

}  // namespace tarnwick
