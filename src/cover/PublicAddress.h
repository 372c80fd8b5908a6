#pragma once
#include <sys/socket.h>

namespace tarnwick {

/// Whether an address is one that the whole internet can reach: no loopback, private, link-local, multicast
/// or otherwise special one (IANA's registries of special-purpose addresses), also not inside an address that
/// stands for one of the other family.
bool isPublicAddress(const sockaddr& address);

}  // namespace tarnwick
