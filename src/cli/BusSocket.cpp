#include "cli/BusSocket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

namespace tarnwick {
namespace {

using Clock = std::chrono::steady_clock;

bool connectTo(int socket, const BusAddress& address, Clock::time_point deadline) {
  sockaddr_un name{};
  name.sun_family = AF_UNIX;
  if (address.name.size() + 1 > sizeof name.sun_path) return false;
  std::memcpy(name.sun_path + address.isAbstract, address.name.data(), address.name.size());
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.name.size() + 1);
  for (;;) {
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&name), length) == 0) return true;
    // The bus has too many callers waiting; nothing tells when it has taken one in.
    if (errno != EAGAIN || Clock::now() >= deadline) return false;
    ::poll(nullptr, 0, 1);
  }
}

}  // namespace

BusSocket::BusSocket(const std::vector<BusAddress>& addresses, Clock::time_point deadline) {
  for (const BusAddress& address : addresses) {
    descriptor_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor_ < 0) return;
    if (connectTo(descriptor_, address, deadline)) return;
    ::close(descriptor_);
    descriptor_ = -1;
  }
}

BusSocket::~BusSocket() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

}  // namespace tarnwick
