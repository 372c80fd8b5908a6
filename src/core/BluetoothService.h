#pragma once
#include "core/NotchModel.h"
#include "platform/BluetoothDevices.h"

namespace tarnwick {

struct Desktop;

/// Shows an indicator when a Bluetooth device comes or goes.
class BluetoothService {
 public:
  /// Begins to listen. Model and desktop must outlive the service.
  BluetoothService(NotchModel& model, const Desktop& desktop);

 private:
  void connected(const BluetoothDevice& device);
  void announce(const BluetoothDevice& device, bool isConnected);
  void updateBattery(const BluetoothDevice& device);

  NotchModel& model_;
  Scheduler& scheduler_;
  const double launchedAt_;
  /// The device whose connection was announced last, and when.
  std::string announced_;
  double announcedAt_ = 0;
  /// Its level was told along.
  bool levelTold_ = false;
  Subscription subscription_;
};

}  // namespace tarnwick
