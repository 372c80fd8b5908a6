#pragma once
#include <sys/socket.h>
#include <sys/un.h>

#include "base/Descriptor.h"
#include "dbus/BusAddress.h"

namespace tarnwick {

/// A name for a socket of this machine, as the system takes it.
struct LocalName {
  /// `length` is 0 when the address is too long for one.
  explicit LocalName(const BusAddress& address);
  const sockaddr* pointer() const { return reinterpret_cast<const sockaddr*>(&name); }

  sockaddr_un name{};
  socklen_t length = 0;
};

/// Whether whoever is at the other end is this user or root. What we have to say is nobody else's business,
/// and a name that was given up anybody may take.
bool isTrusted(int socket);

/// Connects to a socket of this machine. It never blocks, neither here nor later.
/// @param type as of socket(2).
/// @return no descriptor when that fails, with the reason in errno: EAGAIN when too many callers wait there
/// already.
Descriptor connectTo(const BusAddress& address, int type);

}  // namespace tarnwick
