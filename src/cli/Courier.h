#pragma once
#include <string>
#include <string_view>

#include "dbus/BusConnection.h"

namespace tarnwick {

/// A process that outlives a hook, to deliver what a bus that hangs has not taken in time. There is one for
/// each user and bus: it takes the messages of all hooks that come while it is under way, which keeps their
/// order, and ends when everything is delivered, or ten seconds after its start.
class Courier {
 public:
  /// @param bus the list of addresses that the hooks of one session have in common.
  explicit Courier(std::string_view bus);

  bool isUnderWay() const { return call() >= 0; }
  /// Hands a message to the courier. @return whether there is one that has taken it.
  bool take(std::string_view message) const;
  /// Becomes two processes, the second of which waits for the answers that `connection` lacks. @return false
  /// when there is a courier already.
  bool start(BusConnection& connection) const;

 private:
  Descriptor call() const;

  BusAddress address_;
};

}  // namespace tarnwick
