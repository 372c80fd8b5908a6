#include "cli/SessionBus.h"

#include <algorithm>

#include "dbus/BusMessage.h"

namespace tarnwick {
namespace {

/// A bus that is well answers within one.
constexpr std::chrono::milliseconds patience(150);

}  // namespace

void SessionBus::greet() {
  // What is left to the courier must not be overtaken.
  if (!courier_.isUnderWay()) connect();
}

void SessionBus::connect() { connection_.emplace(parseBusAddresses(address_), BusConnection::Peer::trusted); }

void SessionBus::post(std::string_view name, const StringMap& userInfo) {
  const size_t dot = name.rfind('.');
  std::string path = "/" + std::string(name.substr(0, dot));
  std::ranges::replace(path, '.', '/');
  const std::string signal = BusMessage::signal(1, path, name.substr(0, dot), name.substr(dot + 1), userInfo);

  if (!connection_) greet();
  if (!connection_ && courier_.take(signal)) return;
  if (!connection_) connect();
  BusConnection connection = std::move(*connection_);
  connection_.reset();
  connection.send(signal);
  if (connection.wait(patience) != BusConnection::State::silent) return;
  // Another hook may have started one meanwhile.
  (void)(courier_.start(connection) || courier_.take(signal));
}

}  // namespace tarnwick
