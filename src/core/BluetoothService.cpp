#include "core/BluetoothService.h"

#include <algorithm>
#include <climits>

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
  if (device.deviceClassMajor == audioDeviceClass) return "headphones";
  return "dot.radiowaves.left.and.right";
}

/// The emptiest of the batteries that know their level.
std::optional<int> battery(const BluetoothDevice& device) {
  std::optional<int> lowest;
  for (const int level : device.batteryLevels) {
    if (level >= 1 && level < lowest.value_or(INT_MAX)) lowest = level;
  }
  return lowest;
}

Transient indicator(const BluetoothDevice& device, bool isConnected) {
  return Transient::device(device.name.empty() ? tr("Bluetooth device", "Appareil Bluetooth") : device.name,
                           symbolFor(device), isConnected ? battery(device) : std::nullopt, isConnected);
}

}  // namespace

BluetoothService::BluetoothService(NotchModel& model, const Desktop& desktop)
    : model_(model), scheduler_(desktop.scheduler), launchedAt_(desktop.scheduler.uptime()) {
  subscription_ = desktop.bluetooth.observe([this](BluetoothEvent event, const BluetoothDevice& device) {
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
  if (scheduler_.uptime() - launchedAt_ > gracePeriod) announce(device, true);
}

void BluetoothService::announce(const BluetoothDevice& device, bool isConnected) {
  announced_ = isConnected ? device.id : "";
  announcedAt_ = scheduler_.uptime();
  levelTold_ = battery(device).has_value();
  if (model_.settings.bluetoothAlerts) model_.show(indicator(device, isConnected), indicatorSeconds);
}

void BluetoothService::updateBattery(const BluetoothDevice& device) {
  // Devices tell their level a moment after they have connected. Once it has been told, it is no news.
  if (device.id != announced_) return;
  const Transient next = indicator(device, true);
  const std::optional<Transient>& shown = model_.transient;
  const bool completes =
      !levelTold_ && battery(device) && scheduler_.uptime() - announcedAt_ <= levelPatience;
  const bool isNews = shown ? *shown != next && shown->key() == next.key() : completes;
  if (isNews) announce(device, true);
}

}  // namespace tarnwick
