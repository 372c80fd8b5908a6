#pragma once
#include <atomic>
#include <string>

namespace tarnwick {

/// The bytes at a file:, data:, http: or https: address; empty when there are none, or more than 8 MiB. Takes
/// its time; ends early once `cancelled` is set. For any thread, one at a time.
std::string pictureAt(const std::string& url, const std::atomic<bool>& cancelled);

}  // namespace tarnwick
