#include "services/BluetoothService.h"

#include <algorithm>
#include <climits>

#include "base/DisplayText.h"
#include "base/L10n.h"
#include "platform/Desktop.h"

namespace tarnwick {
namespace {

/// Devices that are connected when the program starts are no news.
constexpr double gracePeriod = 3;
constexpr double indicatorSeconds = 3;
/// A headset may be asked for its level only once its sound has been set up. What comes later than this many
/// seconds does not belong to the connection any more.
constexpr double levelPatience = 30;

std::string symbolFor(const BluetoothDevice& device) {
  std::string name = device.name;
  std::transform(name.begin(), name.end(), name.begin(),
      [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  const auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
  if (has("airpods max")) return "airpodsmax";
  if (has("airpods pro")) return "airpodspro";
  if (has("airpods")) return "airpods";
  if (has("beats")) return "beats.headphones";
  if (has("keyboard") || has("clavier")) return "keyboard";
  if (has("mouse") || has("souris")) return "magicmouse";
  if (has("trackpad")) return "rectangle.and.hand.point.up.left";
  if (device.isAudio) return "headphones";
  return "dot.radiowaves.left.and.right";
}

/// The emptiest of the batteries that know their level.
std::optional<int> battery(const BluetoothDevice& device) {
  std::optional<int> lowest;
  for (const int level : device.batteryLevels) {
    if (level >= 1 && level <= 100 && level < lowest.value_or(INT_MAX)) lowest = level;
  }
  return lowest;
}

Transient indicator(const BluetoothDevice& device, bool isConnected) {
  const std::string name = displayText(device.name);
  return Transient::device(name.empty() ? tr("Bluetooth device", "Appareil Bluetooth") : name,
      symbolFor(device), isConnected ? battery(device) : std::nullopt, isConnected);
}

}  // namespace

void BluetoothService::start(const AppSettings& settings) {
  settings_ = &settings;
  startedAt_ = scheduler_.uptime();
  subscription_ = devices_.observe([this](BluetoothEvent event, const BluetoothDevice& device) {
    switch (event) {
      case BluetoothEvent::connected:
        return connected(device);
      case BluetoothEvent::disconnected:
        return announce(device, false);
      case BluetoothEvent::batteryChanged:
        return updateBattery(device);
    }
  });
}

void BluetoothService::connected(const BluetoothDevice& device) {
  if (scheduler_.uptime() - startedAt_ > gracePeriod) announce(device, true);
}

void BluetoothService::announce(const BluetoothDevice& device, bool isConnected) {
  const bool isShown =
      settings_->bluetoothAlerts && onTransient &&
      onTransient(indicator(device, isConnected), indicatorSeconds);
  announced_ = isShown && isConnected ? device.id : "";
  announcedAt_ = scheduler_.uptime();
  levelTold_ = battery(device).has_value();
}

void BluetoothService::updateBattery(const BluetoothDevice& device) {
  if (device.id != announced_) return;
  // Devices tell their level a moment after they have connected. Once it has been told it is no news, but
  // what is on show stays true.
  const double age = scheduler_.uptime() - announcedAt_;
  const bool isNews = levelTold_ ? age < indicatorSeconds : battery(device) && age <= levelPatience;
  if (!isNews || !onUpdate || !onUpdate(indicator(device, true), indicatorSeconds)) return;
  announcedAt_ = scheduler_.uptime();
  levelTold_ = true;
}

}  // namespace tarnwick
