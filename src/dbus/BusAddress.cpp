#include "dbus/BusAddress.h"

#include <optional>

#include "base/Environment.h"

namespace tarnwick {
namespace {

/// Cuts off and returns what comes before the first `separator`.
std::string_view takeField(std::string_view& text, char separator) {
  const std::string_view field = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(text.size(), field.size() + 1));
  return field;
}

int hexDigit(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}

/// Resolves %xx.
std::optional<std::string> unescaped(std::string_view text) {
  std::string result;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      result += text[at];
      continue;
    }
    if (at + 2 >= text.size()) return std::nullopt;
    const int high = hexDigit(text[at + 1]), low = hexDigit(text[at + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    result += static_cast<char>(high * 16 + low);
    at += 2;
  }
  return result;
}

std::optional<BusAddress> parseAddress(std::string_view text) {
  if (takeField(text, ':') != "unix") return std::nullopt;
  while (!text.empty()) {
    std::string_view value = takeField(text, ',');
    const std::string_view key = takeField(value, '=');
    std::optional<std::string> name = unescaped(value);
    if (!name || name->empty()) continue;
    if (key == "path") return BusAddress{std::move(*name)};
    if (key == "abstract") return BusAddress{std::move(*name), true};
    const std::string_view runtime = environment("XDG_RUNTIME_DIR");
    if (key == "runtime" && *name == "yes" && !runtime.empty())
      return BusAddress{std::string(runtime) + "/bus"};
  }
  return std::nullopt;
}

}  // namespace

std::vector<BusAddress> parseBusAddresses(std::string_view list) {
  std::vector<BusAddress> addresses;
  while (!list.empty()) {
    if (auto address = parseAddress(takeField(list, ';'))) addresses.push_back(std::move(*address));
  }
  return addresses;
}

}  // namespace tarnwick
