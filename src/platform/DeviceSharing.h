#pragma once
#include <string>
#include <vector>

#include "base/FilePath.h"

namespace tarnwick {

/// Where files can be sent to: a device nearby, or a way to choose one.
struct SharingTarget {
  std::string id;
  /// As its user knows it.
  std::string name;

  friend bool operator==(const SharingTarget&, const SharingTarget&) = default;
};

/// Hands files to other devices.
class DeviceSharing {
 public:
  virtual ~DeviceSharing() = default;

  /// As known now; empty where there is nothing that could send.
  virtual std::vector<SharingTarget> targets() = 0;
  /// Begins to look who is there now.
  virtual void refresh() = 0;
  virtual void send(const std::vector<FilePath>& files, const std::string& target) = 0;
};

}  // namespace tarnwick
