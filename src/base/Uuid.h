#pragma once
#include <compare>
#include <cstdint>
#include <string>

namespace tarnwick {

/// A random 128-bit identifier (RFC 4122, version 4).
struct Uuid {
  uint64_t high = 0, low = 0;

  static Uuid random();
  /// The usual form of 36 characters.
  std::string text() const;
  friend constexpr auto operator<=>(const Uuid&, const Uuid&) = default;
};

}  // namespace tarnwick
