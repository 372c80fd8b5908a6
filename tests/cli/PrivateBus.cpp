#include "PrivateBus.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>

namespace tarnwick {
namespace {

/// For 20 seconds at most.
template<typename Condition>
void waitUntil(Condition isMet) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!isMet() && std::chrono::steady_clock::now() < deadline) ::usleep(1000);
}

}  // namespace

PrivateBus::PrivateBus()
    : daemon_({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address(),
                  "--print-address=1"},
          {}) {
  waitUntil([this] { return contentsOf(daemon_.outputPath()).ends_with('\n'); });
}

BusListener::BusListener(const PrivateBus& bus) {
  GError* error = nullptr;
  constexpr auto flags = static_cast<GDBusConnectionFlags>(
      G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  connection_ =
      g_dbus_connection_new_for_address_sync(bus.address().c_str(), flags, nullptr, nullptr, &error);
  if (!connection_) throw std::runtime_error(error->message);
  g_dbus_connection_signal_subscribe(connection_, nullptr, "dev.tarnwick", nullptr, "/dev/tarnwick", nullptr,
      G_DBUS_SIGNAL_FLAGS_NONE, receive, this, nullptr);
  // What the bus answers now it has sent after it has heard of the subscription.
  GVariant* answer = g_dbus_connection_call_sync(connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus",
      "org.freedesktop.DBus", "GetId", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  g_variant_unref(answer);
}

BusListener::~BusListener() { g_object_unref(connection_); }

void BusListener::receive(GDBusConnection*, const char*, const char*, const char*, const char* member,
    GVariant* body, void* listener) {
  Signal signal{member, {}};
  GVariant* map = g_variant_get_child_value(body, 0);
  GVariantIter entries;
  g_variant_iter_init(&entries, map);
  for (const char *key, *value; g_variant_iter_next(&entries, "{&s&s}", &key, &value);)
    signal.map[key] = value;
  g_variant_unref(map);
  static_cast<BusListener*>(listener)->heard_.push_back(std::move(signal));
}

const std::vector<BusListener::Signal>& BusListener::waitFor(size_t count) {
  waitUntil([&] {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    return heard_.size() >= count;
  });
  return heard_;
}

}  // namespace tarnwick
