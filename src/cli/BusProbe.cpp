#include "cli/BusProbe.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <string>

#include "cli/BusMessage.h"

namespace tarnwick {

using Clock = std::chrono::steady_clock;

BusProbe::BusProbe(const std::vector<BusAddress>& addresses) : socket_(addresses, Clock::time_point()) {
  if (descriptor() < 0) return;
  std::string bytes(BusMessage::authentication);
  bytes += BusMessage::busCall(1, "org.freedesktop.DBus", "Hello");
  const ssize_t sent = ::send(descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
  if (sent == static_cast<ssize_t>(bytes.size())) state_ = State::silent;
}

void BusProbe::proceed() {
  char buffer[4096];
  while (state_ == State::silent) {
    const ssize_t received = ::recv(descriptor(), buffer, sizeof buffer, 0);
    if (received < 0 && errno == EINTR) continue;
    if (received < 0 && errno == EAGAIN) return;
    const bool understood = received > 0 && replies_.consume({buffer, static_cast<size_t>(received)});
    if (!understood) {
      state_ = State::absent;
    } else if (replies_.count() > 0) {
      state_ = State::answers;
    }
  }
}

BusProbe::State BusProbe::wait(std::chrono::milliseconds patience) {
  const Clock::time_point deadline = Clock::now() + patience;
  while (state_ == State::silent) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd ready{descriptor(), POLLIN, 0};
    if (left <= 0 || ::poll(&ready, 1, static_cast<int>(left)) == 0) break;
    proceed();
  }
  return state_;
}

}  // namespace tarnwick
