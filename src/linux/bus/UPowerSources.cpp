#include "linux/bus/UPowerSources.h"

namespace tarnwick {
namespace {

constexpr auto upower = "org.freedesktop.UPower";
constexpr auto powerProfiles = "net.hadess.PowerProfiles";

constexpr unsigned batteryType = 2;
constexpr unsigned chargingState = 1;

}  // namespace

UPowerSources::UPowerSources(MessageBus& bus)
    : manager_(bus, upower, "/org/freedesktop/UPower", upower, true),
      display_(bus, upower, "/org/freedesktop/UPower/devices/DisplayDevice", "org.freedesktop.UPower.Device",
          true),
      // Not started on our account: it takes other power managers' place.
      profiles_(bus, powerProfiles, "/net/hadess/PowerProfiles", powerProfiles, false) {
  manager_.onChange = display_.onChange = [this] { sources_.notifyObservers(); };
  profiles_.onChange = [this] { profileChanged(); };
}

std::optional<std::vector<PowerSource>> UPowerSources::all() const {
  const QVariantMap &manager = manager_.values(), &display = display_.values();
  if (manager.isEmpty() || display.isEmpty()) return std::nullopt;
  const bool isBattery = display["Type"].toUInt() == batteryType && display["IsPresent"].toBool();
  return std::vector{PowerSource{.isInternalBattery = isBattery,
      .currentCapacity = display["Percentage"].toDouble(),
      .maxCapacity = 100,
      .onACPower = !manager["OnBattery"].toBool(),
      .isCharging = display["State"].toUInt() == chargingState}};
}

void UPowerSources::profileChanged() {
  const QVariant profile = profiles_.values()["ActiveProfile"];
  if (!profile.isValid()) return;
  const bool saves = profile.toString() == "power-saver";
  const auto before = std::exchange(lowPowerMode_, saves);
  if (before && *before != saves) mode_.notifyObservers();
}

}  // namespace tarnwick
