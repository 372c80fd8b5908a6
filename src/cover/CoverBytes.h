#pragma once
#include <cstddef>
#include <string>

namespace tarnwick {

/// Larger covers are no covers.
inline constexpr size_t largestCover = size_t{8} << 20;

/// What stands at a file:, data:, http: or https: address; empty when there is nothing, or more than
/// `largestCover` bytes. Files are those of this machine, which may hang; for what is fetched from the
/// network see `WebFetch.h`.
std::string coverBytes(const std::string& address, bool mayUseNetwork);

}  // namespace tarnwick
