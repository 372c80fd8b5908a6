#include "services/PowerService.h"

#include <array>

#include "base/L10n.h"

namespace tarnwick {
namespace {

/// Percent, in the order of the warnings.
constexpr std::array lowLevels{20, 10};
constexpr double bannerSeconds = 5;

int percentage(const PowerSource& battery) {
  const double maximum = battery.maxCapacity > 0 ? battery.maxCapacity : 100;
  return static_cast<int>(battery.currentCapacity / maximum * 100);
}

Banner lowBatteryBanner(int level) {
  return {.icon = "battery.25percent",
          .tint = colors::red,
          .title = tr("Low battery", "Batterie faible"),
          .subtitle = std::to_string(level) + tr("% left", "% restants")};
}

}  // namespace

void PowerService::start(const AppSettings& settings) {
  settings_ = &settings;
  read();
  sourcesSubscription_ = sources_.observe([this] { read(); });
  modeSubscription_ = sources_.observeLowPowerMode([this] {
    if (alertsAllowed() && onTransient)
      onTransient(Transient::lowPowerMode(sources_.isLowPowerModeEnabled()));
  });
}

void PowerService::read() {
  const auto sources = sources_.all();
  if (!sources) return;
  for (const PowerSource& source : *sources) {
    if (source.isInternalBattery) readBattery(source);
  }
}

void PowerService::readBattery(const PowerSource& battery) {
  // The daemon that knows the battery may answer at any time after the start: what it tells first is the
  // state at the start.
  const bool announce = hasBattery && alertsAllowed();
  const int newLevel = percentage(battery);
  const bool plugged = battery.onACPower;
  hasBattery = true;
  charging = battery.isCharging;
  if (announce && plugged != pluggedIn) {
    if (onTransient) onTransient(Transient::power(plugged, newLevel));
    if (plugged) sounds_.play("Pop");
  }
  if (plugged) {
    warnedAt_.clear();
  } else {
    warnIfLow(newLevel, announce);
  }
  level = newLevel;
  pluggedIn = plugged;
}

void PowerService::warnIfLow(int newLevel, bool announce) {
  for (const int threshold : lowLevels) {
    const bool fellThrough = level > threshold && newLevel <= threshold;
    if (!fellThrough || !warnedAt_.insert(threshold).second || !announce) continue;
    if (onBanner) onBanner(lowBatteryBanner(newLevel), bannerSeconds);
    sounds_.play("Basso");
  }
}

}  // namespace tarnwick
