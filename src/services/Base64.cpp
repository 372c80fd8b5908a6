#include "services/Base64.h"

#include <array>
#include <cstdint>

namespace tarnwick {
namespace {

constexpr uint8_t noDigit = 64;

constexpr std::array<uint8_t, 256> digitValues = [] {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<uint8_t, 256> values{};
  values.fill(noDigit);
  for (size_t i = 0; i < digits.size(); ++i)
    values[static_cast<uint8_t>(digits[i])] = static_cast<uint8_t>(i);
  return values;
}();

}  // namespace

std::optional<std::string> decodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  text.remove_suffix(padding);
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3 + 3);
  uint32_t bits = 0;
  int count = 0;
  for (const char each : text) {
    const uint8_t value = digitValues[static_cast<uint8_t>(each)];
    if (value == noDigit) return std::nullopt;
    bits = bits << 6 | value;
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes.push_back(static_cast<char>(bits >> count));
    }
  }
  return bytes;
}

}  // namespace tarnwick
