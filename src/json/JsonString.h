#pragma once
#include <string>
#include <string_view>

namespace tarnwick {

/// A text as a JSON string: slashes and characters outside ASCII are not escaped. Halves of surrogate pairs,
/// encoded as if they were characters, become escapes; all else must be UTF-8.
inline std::string jsonString(std::string_view text) {
  constexpr std::string_view special = "\"\\\b\f\n\r\t", letters = "\"\\bfnrt", digits = "0123456789abcdef";
  std::string json = "\"";
  const auto escapeUnit = [&](unsigned unit) {
    json += "\\u";
    for (const int shift : {12, 8, 4, 0}) json += digits[unit >> shift & 0xF];
  };
  for (size_t at = 0; at < text.size(); ++at) {
    const auto byte = [&](size_t offset) { return static_cast<unsigned char>(text[at + offset]); };
    if (const size_t index = special.find(text[at]); index != special.npos) {
      (json += '\\') += letters[index];
    } else if (byte(0) < ' ') {
      escapeUnit(byte(0));
    } else if (byte(0) == 0xED && at + 2 < text.size() && byte(1) >= 0xA0) {
      escapeUnit(0xD000 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
      at += 2;
    } else {
      json += text[at];
    }
  }
  return json += '"';
}

}  // namespace tarnwick
