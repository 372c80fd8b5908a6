#include "base/Utf8.h"

#include <utf8proc.h>

#include <algorithm>

namespace tarnwick {

bool isValidUtf8(std::string_view text) {
  for (;;) {
    text.remove_prefix(lengthOfPlainAscii(text));
    if (text.empty()) return true;
    const size_t length = lengthOfCodePoint(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
}

std::string withoutInvalidUtf8(std::string_view text) {
  std::string clean;
  clean.reserve(text.size());
  for (;;) {
    const size_t plain = lengthOfPlainAscii(text);
    clean += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return clean;
    const size_t length = text[0] == '\0' ? 0 : lengthOfCodePoint(text);
    clean += length > 0 ? text.substr(0, length) : replacementCharacter;
    text.remove_prefix(std::max<size_t>(length, 1));
  }
}

size_t lengthOfCodePoint(std::string_view text) {
  utf8proc_int32_t codePoint;
  const auto bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
  return length > 0 ? static_cast<size_t>(length) : 0;
}

size_t lengthOfPlainAscii(std::string_view text) {
  const auto isPlain = [](char byte) { return byte > 0; };
  return static_cast<size_t>(std::ranges::find_if_not(text, isPlain) - text.begin());
}

}  // namespace tarnwick
