#pragma once
#include <string_view>

namespace tarnwick {

/// Whether a string that the JSON reader decoded came from an escape of half a surrogate pair: the reader
/// lets a low half pass and encodes it as bytes that are not UTF-8.
inline bool hasLoneSurrogate(std::string_view decoded) {
  for (size_t at = decoded.find('\xED'); at != decoded.npos; at = decoded.find('\xED', at + 1)) {
    if (at + 1 < decoded.size() && static_cast<unsigned char>(decoded[at + 1]) >= 0xA0) return true;
  }
  return false;
}

}  // namespace tarnwick
