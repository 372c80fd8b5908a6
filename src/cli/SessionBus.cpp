#include "cli/SessionBus.h"

#include <algorithm>
#include <array>

#include "cli/HookInstaller.h"
#include "dbus/BusClient.h"
#include "dbus/BusMessage.h"

namespace tarnwick {
namespace {

/// A bus that is well answers within one.
constexpr std::chrono::milliseconds patience(150);

/// Claude Code ends a hook that takes as long as its entry allows.
constexpr std::chrono::seconds answerTime(HookInstaller::permissionTimeout - 5);

/// Whether nobody has heard of a call that was answered so.
bool wasLost(const BusEvent& answer) {
  constexpr std::array<std::string_view, 5> reasons{
      "NameHasNoOwner", "ServiceUnknown", "UnknownObject", "UnknownInterface", "UnknownMethod"};
  constexpr std::string_view prefix = "org.freedesktop.DBus.Error.";
  return answer.error.starts_with(prefix) &&
         std::ranges::count(reasons, std::string_view(answer.error).substr(prefix.size())) > 0;
}

PermissionAnswer answerOf(const BusEvent& reply) {
  if (reply.kind != BusEvent::Kind::reply || reply.arguments.size() != 2) return {};
  const std::string& behavior = reply.arguments[0];
  using enum PermissionAnswer::Behavior;
  return {behavior == "allow" ? allow : behavior == "deny" ? deny : none, reply.arguments[1]};
}

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

std::optional<PermissionAnswer> SessionBus::ask(const StringMap& event, int reader) {
  if (!connection_) greet();
  if (!connection_) return std::nullopt;
  BusClient bus(std::move(*connection_));
  connection_.reset();
  // What is sent to a bus that hangs may be taken late.
  if (!bus.answer(BusClient::greeting, patience)) return std::nullopt;
  const uint32_t call =
      bus.call("dev.tarnwick.Tarnwick", "/dev/tarnwick/permissions", "dev.tarnwick", "Ask", event);
  const auto answer = bus.answer(call, answerTime, reader);
  if (answer && wasLost(*answer)) return std::nullopt;
  return answer ? answerOf(*answer) : PermissionAnswer();
}

}  // namespace tarnwick
