#include "dbus/BusConnection.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>

#include "dbus/BusMessage.h"
#include "dbus/LocalSocket.h"

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

/// Nothing tells when a bus has taken a caller in and has room for the next.
constexpr Milliseconds untilThereIsRoom{5};

}  // namespace

BusConnection::BusConnection(std::vector<BusAddress> addresses, Peer peer)
    : addresses_(std::move(addresses)), peer_(peer) {
  unsent_ = BusMessage::authentication;
  unsent_ += BusMessage::busCall(++calls_, BusMessage::busName, "Hello");
  write();
}

void BusConnection::send(std::string_view message) {
  if (state_ == State::absent) return;
  state_ = State::silent;
  unsent_ += message;
  unsent_ += BusMessage::busCall(++calls_, BusMessage::peerInterface, "Ping");
  write();
}

Descriptor BusConnection::release(std::string& unsent) {
  write();
  unsent = std::move(unsent_);
  return std::move(socket_);
}

void BusConnection::proceed() {
  write();
  read();
}

void BusConnection::connect() {
  bool isFull = false;
  for (const BusAddress& address : addresses_) {
    socket_ = connectTo(address, SOCK_STREAM);
    isFull = isFull || (socket_ < 0 && errno == EAGAIN);
    if (socket_ >= 0 && (peer_ == Peer::anybody || isTrusted(socket_))) return;
  }
  socket_ = Descriptor();
  if (!isFull) giveUp();
}

void BusConnection::write() {
  if (state_ == State::silent && socket_ < 0) connect();
  while (state_ == State::silent && socket_ >= 0 && !unsent_.empty()) {
    const ssize_t sent = ::send(socket_, unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
      unsent_.erase(0, static_cast<size_t>(sent));
    } else if (errno == EAGAIN) {
      return;
    } else if (errno != EINTR) {
      giveUp();
    }
  }
}

void BusConnection::read() {
  char buffer[4096];
  while (state_ == State::silent && socket_ >= 0) {
    const ssize_t received = ::recv(socket_, buffer, sizeof buffer, 0);
    if (received < 0 && errno == EAGAIN) return;
    if (received < 0 && errno == EINTR) continue;
    const bool isUnderstood = received > 0 && replies_.consume({buffer, static_cast<size_t>(received)});
    if (!isUnderstood) {
      giveUp();
    } else if (replies_.count() >= calls_) {
      state_ = State::answers;
    }
  }
}

void BusConnection::giveUp() {
  state_ = State::absent;
  socket_ = Descriptor();
}

void BusConnection::pause(Milliseconds longest, int other) const {
  if (socket_ < 0) longest = std::min(longest, untilThereIsRoom);
  const short events = unsent_.empty() ? POLLIN : POLLIN | POLLOUT;
  pollfd ready[] = {{socket_, events, 0}, {other, POLLIN, 0}};
  ::poll(ready, 2, static_cast<int>(longest.count()));
}

BusConnection::State BusConnection::wait(Milliseconds patience) {
  const Clock::time_point deadline = Clock::now() + patience;
  for (proceed(); state_ == State::silent; proceed()) {
    // Rounded up, so that it does not return early again and again.
    const auto left = std::chrono::ceil<Milliseconds>(deadline - Clock::now());
    if (left <= Milliseconds::zero()) break;
    pause(left);
  }
  return state_;
}

}  // namespace tarnwick
