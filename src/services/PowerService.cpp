#include "services/PowerService.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "base/L10n.h"

namespace tarnwick {
namespace {

/// Percent, in the order of the warnings.
constexpr std::array lowLevels{20, 10};
constexpr double bannerSeconds = 5;

/// None where the battery does not know.
std::optional<int> percentage(const PowerSource& battery) {
  const double maximum = battery.maxCapacity > 0 ? battery.maxCapacity : 100;
  const double percent = battery.currentCapacity / maximum * 100;
  if (std::isnan(percent)) return std::nullopt;
  return static_cast<int>(std::clamp(percent, 0.0, 100.0));
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
  const std::optional<int> told = percentage(battery);
  if (!told) return;
  const int newLevel = *told;
  // The daemon that knows the battery may answer at any time after the start: what it tells first is the
  // state at the start.
  const bool announce = hasBattery && alertsAllowed();
  const bool plugged = battery.onACPower;
  hasBattery = true;
  charging = battery.isCharging;
  if (announce && plugged != pluggedIn) {
    if (onTransient) onTransient(Transient::power(plugged, newLevel));
    if (plugged) sounds_.play(Sound::powerPlug);
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
    sounds_.play(Sound::batteryLow);
  }
}

}  // namespace tarnwick
