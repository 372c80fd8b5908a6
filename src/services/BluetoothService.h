#pragma once
#include <functional>
#include <string>

#include "base/AppSettings.h"
#include "base/Scheduler.h"
#include "base/Transient.h"
#include "platform/BluetoothDevices.h"

namespace tarnwick {

/// Tells when a Bluetooth device comes or goes, with the level of its battery.
class BluetoothService {
 public:
  /// The ports must outlive the service.
  BluetoothService(BluetoothDevices& devices, Scheduler& scheduler)
      : devices_(devices), scheduler_(scheduler) {}

  /// Asks to show an indicator for a number of seconds. @return whether it is shown
  std::function<bool(const Transient&, double)> onTransient;
  /// The same for what is known only later: never in the place of another indicator.
  std::function<bool(const Transient&, double)> onUpdate;

  /// Begins to listen. `settings` must outlive the service.
  void start(const AppSettings& settings);

 private:
  void connected(const BluetoothDevice& device);
  void announce(const BluetoothDevice& device, bool isConnected);
  void updateBattery(const BluetoothDevice& device);

  BluetoothDevices& devices_;
  Scheduler& scheduler_;
  const AppSettings* settings_ = nullptr;
  double startedAt_ = 0;
  /// The device whose connection was shown last, and when.
  std::string announced_;
  double announcedAt_ = 0;
  /// Its level was shown along.
  bool levelTold_ = false;
  Subscription subscription_;
};

}  // namespace tarnwick
