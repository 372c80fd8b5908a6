#pragma once
#include <string>

#include "base/Environment.h"

namespace tarnwick {

/// Where the session's message bus may listen, as a list of addresses in the form of the D-Bus specification:
/// those in the environment, which may be those of a session that has ended, and then `bus` in the runtime
/// folder. Empty when there can be none. Nobody is asked to launch a bus.
inline std::string sessionBusAddress() {
  std::string list(environment("DBUS_SESSION_BUS_ADDRESS"));
  if (list == "disabled:") return {};
  const std::string_view runtime = environment("XDG_RUNTIME_DIR");
  if (runtime.empty()) return list;
  list += list.empty() ? "unix:path=" : ";unix:path=";
  constexpr std::string_view digits = "0123456789abcdef", plain = "-_/.";
  for (const char character : runtime) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isPlain =
        (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
        plain.find(character) != plain.npos;
    isPlain ? list += character : (list += '%') += {digits[byte >> 4], digits[byte & 15]};
  }
  return list += "/bus";
}

}  // namespace tarnwick
