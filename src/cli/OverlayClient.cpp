#include "cli/OverlayClient.h"

#include <signal.h>
#include <stdio.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "dbus/BusClient.h"
#include "dbus/BusMessage.h"

namespace tarnwick::OverlayClient {
namespace {

constexpr std::chrono::milliseconds patience(5000);
constexpr std::string_view overlayName = "dev.tarnwick.Tarnwick", path = "/dev/tarnwick",
                           interface = "dev.tarnwick";

uint32_t askBus(BusClient& bus, std::string_view method, std::string_view argument) {
  return bus.call(BusMessage::busName, BusMessage::busPath, BusMessage::busName, method, {argument});
}

uint32_t askSessions(BusClient& bus) { return bus.call(overlayName, path, interface, "Sessions"); }

bool runs(BusClient& bus) {
  const auto owner = bus.answer(askBus(bus, "GetNameOwner", overlayName), patience);
  const bool isThere = owner && owner->kind == BusEvent::Kind::reply;
  if (!isThere) ::fputs("Tarnwick: the overlay does not run\n", stderr);
  return isThere;
}

/// @return false when the text cannot be written
bool print(std::string line) {
  line += '\n';
  for (std::string_view left = line; !left.empty();) {
    const ssize_t written = ::write(STDOUT_FILENO, left.data(), left.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) left.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

/// @param shown what has been printed last
void followSessions(BusClient& bus, std::string shown) {
  uint32_t asked = 0;
  while (const auto event = bus.next(std::nullopt, STDOUT_FILENO)) {
    const bool isAnswer = asked != 0 && event->answered == asked;
    if (event->kind == BusEvent::Kind::signal && event->member == "SessionsChanged") {
      // The answer to a question that is on its way may be that of before.
      asked = askSessions(bus);
    } else if (event->kind == BusEvent::Kind::signal && event->member == "NameOwnerChanged") {
      if (event->arguments.size() == 3 && event->arguments[2].empty()) return;
    } else if (isAnswer && event->kind == BusEvent::Kind::reply && event->arguments.size() == 1) {
      // Not everything that changes is told of.
      if (event->arguments[0] == shown) continue;
      shown = event->arguments[0];
      if (!print(shown)) return;
    } else if (isAnswer) {
      return;
    }
  }
}

}  // namespace

bool printSessions(const std::string& address, bool follow) {
  // A reader that goes ends us as any other way of going does.
  ::signal(SIGPIPE, SIG_IGN);
  BusClient bus(parseBusAddresses(address));
  if (!runs(bus)) return false;
  if (follow) {
    // Before the question, so that no change is missed.
    askBus(bus, "AddMatch",
        "type='signal',sender='dev.tarnwick.Tarnwick',interface='dev.tarnwick',member='SessionsChanged'");
    askBus(bus, "AddMatch",
        "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
        "arg0='dev.tarnwick.Tarnwick'");
  }
  const auto answer = bus.answer(askSessions(bus), patience);
  if (!answer || answer->kind != BusEvent::Kind::reply || answer->arguments.size() != 1) {
    ::fputs("Tarnwick: the overlay does not answer\n", stderr);
    return false;
  }
  const bool isWritten = print(answer->arguments[0]);
  if (follow && isWritten) followSessions(bus, answer->arguments[0]);
  return follow || isWritten;
}

bool open(const std::string& address, const StringMap& wanted) {
  BusClient bus(parseBusAddresses(address));
  if (!runs(bus)) return false;
  // The serial number is nobody's: no answer comes to a signal.
  bus.send(BusMessage::signal(~0U, path, interface, "open", wanted));
  // Answered once the bus has taken what came before.
  return bus.answer(askBus(bus, "GetNameOwner", overlayName), patience).has_value();
}

}  // namespace tarnwick::OverlayClient
