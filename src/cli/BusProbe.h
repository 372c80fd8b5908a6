#pragma once
#include <chrono>
#include <vector>

#include "cli/BusReplies.h"
#include "cli/BusSocket.h"

namespace tarnwick {

/// Asks a message bus to take us in, to learn whether it answers at all. A D-Bus library would wait for that.
class BusProbe {
 public:
  /// silent: there is a bus, which has not answered yet.
  enum class State { absent, silent, answers };

  explicit BusProbe(const std::vector<BusAddress>& addresses);

  State state() const { return state_; }
  /// Readable when the bus has said something; negative when it is absent.
  int descriptor() const { return socket_.descriptor(); }
  /// Takes in what the bus has said.
  void proceed();
  /// Waits while the bus is silent, so long at most.
  State wait(std::chrono::milliseconds patience);

 private:
  BusSocket socket_;
  BusReplies replies_;
  State state_ = State::absent;
};

}  // namespace tarnwick
