#pragma once
#include <chrono>
#include <vector>

#include "cli/BusAddress.h"

namespace tarnwick {

/// A connection to a message bus that never blocks.
class BusSocket {
 public:
  /// Connects to the first address that can be connected to; waits until `deadline` for a bus that has too
  /// many callers to take in.
  BusSocket(const std::vector<BusAddress>& addresses, std::chrono::steady_clock::time_point deadline);
  ~BusSocket();
  BusSocket(const BusSocket&) = delete;
  BusSocket& operator=(const BusSocket&) = delete;

  /// Negative when there is no bus to connect to.
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_ = -1;
};

}  // namespace tarnwick
