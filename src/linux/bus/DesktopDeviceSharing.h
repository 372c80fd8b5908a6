#pragma once
#include <map>
#include <string>

#include "linux/bus/MessageBus.h"
#include "platform/DeviceSharing.h"

namespace tarnwick {

/// The paired devices that KDE Connect can reach, and the desktop's program that sends files by Bluetooth,
/// which asks for the device itself.
class DesktopDeviceSharing : public DeviceSharing {
 public:
  explicit DesktopDeviceSharing(MessageBus& sessionBus);

  std::vector<SharingTarget> targets() override;
  void refresh() override;
  void send(const std::vector<FilePath>& files, const std::string& target) override;

 private:
  /// Not started on our account: who has no use for it would have it listen on the network.
  BusService kdeConnect_;
  /// Names by id.
  std::map<std::string, std::string> devices_;
};

}  // namespace tarnwick
