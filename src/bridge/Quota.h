#pragma once
#include <glib.h>

#include <cstddef>
#include <cstdint>

namespace tarnwick {

/// How much of what somebody says is listened to within a second: more than a player in good order has to
/// say, and not enough to keep this program busy.
class Quota {
 public:
  /// Takes a message of that many bytes in. @return false when it was too much for this second
  bool take(size_t bytes) {
    constexpr int mostMessages = 50;
    constexpr size_t mostBytes = size_t{4} << 20;
    const int64_t now = g_get_monotonic_time();
    if (now - start_ > G_USEC_PER_SEC) {
      start_ = now;
      messages_ = 0;
      bytes_ = 0;
    }
    bytes_ += bytes;
    return ++messages_ <= mostMessages && bytes_ <= mostBytes;
  }

 private:
  int64_t start_ = 0;
  int messages_ = 0;
  size_t bytes_ = 0;
};

}  // namespace tarnwick
