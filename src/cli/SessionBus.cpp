#include "cli/SessionBus.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "cli/BusMessage.h"
#include "cli/BusReplies.h"

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;

/// Milliseconds for poll(2), rounded up so that it does not return early again and again.
int until(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::max<decltype(left)>(left, 0));
}

/// Sends `bytes` and waits until that many calls in them have been answered; gives up silently when the bus
/// does.
void exchange(int socket, std::string_view bytes, size_t calls, Clock::time_point deadline) {
  BusReplies replies;
  while (replies.count() < calls) {
    if (!bytes.empty()) {
      const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent < 0 && errno != EAGAIN && errno != EINTR) return;
      bytes.remove_prefix(static_cast<size_t>(std::max<ssize_t>(sent, 0)));
    }
    pollfd ready{socket, static_cast<short>(bytes.empty() ? POLLIN : POLLIN | POLLOUT), 0};
    const int wait = until(deadline);
    if (wait == 0 || ::poll(&ready, 1, wait) == 0) return;
    if (!(ready.revents & ~POLLOUT)) continue;
    char buffer[4096];
    const ssize_t received = ::recv(socket, buffer, sizeof buffer, 0);
    if (received < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    if (received <= 0 || !replies.consume({buffer, static_cast<size_t>(received)})) return;
  }
}

}  // namespace

void SessionBus::greet() {
  socket_ = std::make_unique<BusSocket>(addresses_, Clock::now() + patience_);
  if (socket_->descriptor() < 0) return;
  const std::string greeting =
      std::string(BusMessage::authentication) + BusMessage::busCall(1, "org.freedesktop.DBus", "Hello");
  // A new connection takes these few bytes at once, or is broken, which the post will find out.
  (void)::send(socket_->descriptor(), greeting.data(), greeting.size(), MSG_NOSIGNAL);
}

void SessionBus::post(std::string_view name, const StringMap& userInfo) {
  const size_t dot = name.rfind('.');
  std::string path = "/" + std::string(name.substr(0, dot));
  std::ranges::replace(path, '.', '/');

  if (!socket_) greet();
  const std::unique_ptr<BusSocket> socket = std::move(socket_);
  if (socket->descriptor() < 0) return;
  // Closing at once would lose the signal, for a bus drops what it has not read of a closed connection; the
  // answer to a call sent after it tells that the bus has passed it on.
  const std::string bytes = BusMessage::signal(2, path, name.substr(0, dot), name.substr(dot + 1), userInfo) +
                            BusMessage::busCall(3, "org.freedesktop.DBus.Peer", "Ping");
  exchange(socket->descriptor(), bytes, 2, Clock::now() + patience_);
}

}  // namespace tarnwick
