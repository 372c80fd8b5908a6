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

/// A signal of other programs on the bus.
struct BusSignal {
  const char* path;
  const char* interface;
  const char* name;
  /// Those with other arguments are not heard.
  const char* type;
  /// Bus name.
  const char* sender;
  /// What the first argument must be; null: anything.
  const char* firstArgument = nullptr;
  GDBusSignalFlags match = G_DBUS_SIGNAL_FLAGS_NONE;
};

/// Hears a signal for as long as it lives; `hear` is called from the main loop.
class BusListener {
 public:
  BusListener(GDBusConnection* bus, const BusSignal& signal, std::function<void(GVariant* arguments)> hear);
  BusListener(const BusListener&) = delete;
  ~BusListener() { g_dbus_connection_signal_unsubscribe(bus_, id_); }

 private:
  GDBusConnection* bus_;
  guint id_;
};

}  // namespace tarnwick
