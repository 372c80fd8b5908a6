#include "dbus/LocalSocket.h"

#include <cstddef>
#include <cstring>

namespace tarnwick {

LocalName::LocalName(const BusAddress& address) {
  name.sun_family = AF_UNIX;
  if (address.name.size() + 1 > sizeof name.sun_path) return;
  std::memcpy(name.sun_path + address.isAbstract, address.name.data(), address.name.size());
  length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.name.size() + 1);
}

bool isTrusted(int socket) {
  ucred peer{};
  socklen_t length = sizeof peer;
  return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
         (peer.uid == ::geteuid() || peer.uid == 0);
}

Descriptor connectTo(const BusAddress& address, int type) {
  const LocalName name(address);
  Descriptor socket(::socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  return ::connect(socket, name.pointer(), name.length) == 0 ? std::move(socket) : Descriptor();
}

}  // namespace tarnwick
