#include "cli/Courier.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "base/StandardDescriptors.h"
#include "dbus/LocalSocket.h"

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// So each message has five seconds at least.
constexpr auto takingTime = 5s, lifeTime = 10s;
/// Above the longest message that a hook has to send.
constexpr size_t longestMessage = 256 << 10;
constexpr size_t mostBytes = 2 << 20;
constexpr auto patience = 100ms;
constexpr int mostCallers = 1024;

bool becomesReadable(int socket) {
  pollfd ready{socket, POLLIN, 0};
  return ::poll(&ready, 1, std::chrono::milliseconds(patience).count()) == 1;
}

/// Leaves whoever started us: its terminal, its folder, and above all the other ends of its pipes.
/// @param kept in rising order
void detach(std::initializer_list<int> kept) {
  ::setsid();
  (void)!::chdir("/");
  unsigned first = STDIN_FILENO;
  for (const int descriptor : kept) {
    if (descriptor < 0) continue;
    ::close_range(first, static_cast<unsigned>(descriptor) - 1, 0);
    first = static_cast<unsigned>(descriptor) + 1;
  }
  ::close_range(first, ~0U, 0);
  openStandardDescriptors();
}

/// Takes one message that a hook hands over, and tells it so. @return false when there is none.
bool takeMessage(int listener, BusConnection& bus, size_t& room) {
  const Descriptor hook(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
  if (hook < 0) return false;
  if (!isTrusted(hook) || !becomesReadable(hook)) return true;
  std::string message(longestMessage, '\0');
  const ssize_t length = ::recv(hook, message.data(), message.size(), MSG_TRUNC);
  if (length <= 0 || static_cast<size_t>(length) > message.size()) return true;
  message.resize(static_cast<size_t>(length));
  // What there is no room for is lost. Nobody may be kept waiting for it, nor start another courier.
  if (message.size() <= room) {
    bus.send(message);
    room -= message.size();
  }
  ::send(hook, "", 1, MSG_NOSIGNAL);
  return true;
}

void deliver(BusConnection& bus, Descriptor listener) {
  const Clock::time_point start = Clock::now();
  size_t room = mostBytes;
  for (auto age = 0ns; age < lifeTime; age = Clock::now() - start) {
    if (age >= takingTime) listener = Descriptor();
    while (takeMessage(listener, bus, room)) continue;
    bus.proceed();
    if (bus.state() != BusConnection::State::silent) return;
    bus.pause(patience, listener);
  }
}

}  // namespace

Courier::Courier(std::string_view bus)
    : address_{"dev.tarnwick.courier-" + std::to_string(::geteuid()) + "-" +
                   std::to_string(std::hash<std::string_view>()(bus)),
          true} {}

Descriptor Courier::call() const {
  Descriptor courier = connectTo(address_, SOCK_SEQPACKET);
  return courier >= 0 && isTrusted(courier) ? std::move(courier) : Descriptor();
}

bool Courier::take(std::string_view message) const {
  const Descriptor courier = call();
  if (courier < 0 || ::send(courier, message.data(), message.size(), MSG_NOSIGNAL) < 0) return false;
  char answer;
  return becomesReadable(courier) && ::recv(courier, &answer, 1, 0) == 1;
}

bool Courier::start(BusConnection& connection) const {
  const LocalName name(address_);
  Descriptor listener(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (::bind(listener, name.pointer(), name.length) != 0 || ::listen(listener, mostCallers) != 0)
    return false;
  if (::fork() != 0) return true;
  const auto [first, second] = std::minmax({int(listener), connection.descriptor()});
  detach({first, second});
  deliver(connection, std::move(listener));
  ::_exit(0);
}

}  // namespace tarnwick
