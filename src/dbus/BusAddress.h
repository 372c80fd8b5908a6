#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

/// Where a message bus listens on this machine.
struct BusAddress {
  /// The socket's path, or its name in the abstract namespace.
  std::string name;
  bool isAbstract = false;

  friend bool operator==(const BusAddress&, const BusAddress&) = default;
};

/// The addresses of a list as in DBUS_SESSION_BUS_ADDRESS, in its order; those that are malformed or of a
/// transport other than a local socket are left out. One may refer to XDG_RUNTIME_DIR.
std::vector<BusAddress> parseBusAddresses(std::string_view list);

}  // namespace tarnwick
