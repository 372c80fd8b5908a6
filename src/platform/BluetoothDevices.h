#pragma once
#include <functional>
#include <string>
#include <vector>

#include "base/ObservableObject.h"

namespace tarnwick {

/// The major device class of headphones and speakers.
inline constexpr int audioDeviceClass = 4;

/// A device that is or was connected by Bluetooth.
struct BluetoothDevice {
  /// The same for the same device.
  std::string id;
  /// Empty when it has none.
  std::string name;
  /// As assigned by the Bluetooth standard; 0 when it is not known.
  int deviceClassMajor = 0;
  /// Percent, one for each battery that reports; 0 from one that does not know its level.
  std::vector<int> batteryLevels;

  friend bool operator==(const BluetoothDevice&, const BluetoothDevice&) = default;
};

enum class BluetoothEvent {
  connected,
  disconnected,
  /// The batteries of a connected device became known or changed.
  batteryChanged,
};

/// The Bluetooth devices of this machine.
class BluetoothDevices {
 public:
  using Receiver = std::function<void(BluetoothEvent, const BluetoothDevice&)>;

  virtual ~BluetoothDevices() = default;
  /// Calls `receive` on the main thread for every event from now on. Of the devices that are connected
  /// already, a `connected` may be told too, soon.
  virtual Subscription observe(Receiver receive) = 0;
};

}  // namespace tarnwick
