#include "bridge/Bus.h"

namespace tarnwick {
namespace {

constexpr int patienceInMilliseconds = 5000;

void finish(GObject* bus, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<BusReply> reply(static_cast<BusReply*>(data));
  GError* error = nullptr;
  const Owned<GVariant> arguments(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error));
  const Owned<GError> owned(error);
  // Whoever asked may be gone.
  if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  (*reply)(arguments.get());
}

}  // namespace

void callAsync(GDBusConnection* bus, GCancellable* cancellable, const BusMethod& method, GVariant* arguments,
    BusReply reply) {
  g_dbus_connection_call(bus, method.destination.c_str(), method.path, method.interface, method.name,
      arguments, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, patienceInMilliseconds, cancellable, finish,
      new BusReply(std::move(reply)));
}

BusListener::BusListener(
    GDBusConnection* bus, const BusSignal& signal, std::function<void(GVariant* arguments)> hear)
    : bus_(bus) {
  struct Closure {
    const char* type;
    std::function<void(GVariant*)> hear;
  };
  const auto deliver = [](GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                           GVariant* arguments, gpointer data) {
    const auto* closure = static_cast<Closure*>(data);
    if (g_variant_is_of_type(arguments, G_VARIANT_TYPE(closure->type))) closure->hear(arguments);
  };
  id_ = g_dbus_connection_signal_subscribe(bus, signal.sender, signal.interface, signal.name, signal.path,
      signal.firstArgument, signal.match, deliver, new Closure{signal.type, std::move(hear)},
      [](gpointer data) { delete static_cast<Closure*>(data); });
}

}  // namespace tarnwick
