#pragma once
#include <functional>
#include <string>

#include "bridge/GLib.h"

namespace tarnwick {

/// A method of another program on the bus.
struct BusMethod {
  std::string destination;
  const char* path;
  const char* interface;
  const char* name;
};

/// Gets the reply's arguments; null when the call failed or was not answered in time.
using BusReply = std::function<void(GVariant* arguments)>;

/// Calls a method and returns at once. `reply` comes from the main loop, within five seconds, and not at all
/// once `cancellable` is cancelled. Takes a floating `arguments`.
void callAsync(GDBusConnection* bus, GCancellable* cancellable, const BusMethod& method, GVariant* arguments,
               BusReply reply);

}  // namespace tarnwick
