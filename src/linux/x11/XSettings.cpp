#include "linux/x11/XSettings.h"

#include <cstdint>

namespace tarnwick {
namespace {

/// In units of four bytes.
constexpr uint32_t longestSettings = 16384;

/// Reads numbers and texts in the order of bytes that the settings have. What lies beyond the end is nothing.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) { isBig_ = number(1) == 1; }

  uint32_t number(size_t size) {
    uint32_t value = 0;
    const std::string_view part = text(size);
    for (size_t i = 0; i < part.size(); ++i) {
      const uint32_t byte = static_cast<uint8_t>(part[i]);
      value |= byte << 8 * (isBig_ ? part.size() - 1 - i : i);
    }
    return value;
  }
  std::string_view text(size_t size) {
    const std::string_view part = bytes_.substr(0, size);
    bytes_.remove_prefix(part.size());
    return part;
  }
  /// With what fills it up to a multiple of four bytes.
  std::string_view padded(size_t size) {
    const std::string_view part = text(size);
    text((4 - size % 4) % 4);
    return part;
  }
  bool isAtEnd() const { return bytes_.empty(); }

 private:
  std::string_view bytes_;
  bool isBig_ = false;
};

}  // namespace

std::string textOfXSettings(std::string_view settings, std::string_view name) {
  enum Type { whole = 0, string = 1, color = 2 };
  Reader reader(settings);
  reader.text(3);
  reader.number(4);  // a serial number
  for (uint32_t left = reader.number(4); left > 0 && !reader.isAtEnd(); --left) {
    const uint32_t type = reader.number(1);
    reader.text(1);
    const std::string_view itsName = reader.padded(reader.number(2));
    reader.number(4);  // when it has changed
    if (type == string) {
      const std::string_view value = reader.padded(reader.number(4));
      if (itsName == name) return std::string(value);
    } else if (type == whole || type == color) {
      reader.text(type == whole ? 4 : 8);
    } else {
      return {};
    }
  }
  return {};
}

std::string xSetting(const X11Connection& connection, std::string_view name) {
  const xcb_atom_t selection = connection.atom("_XSETTINGS_S" + std::to_string(connection.screenNumber()));
  const auto owner = owned(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
  if (!owner || owner->owner == XCB_WINDOW_NONE) return {};
  const xcb_atom_t property = connection.atom("_XSETTINGS_SETTINGS");
  const auto reply = owned(xcb_get_property_reply(connection,
      xcb_get_property(connection, 0, owner->owner, property, property, 0, longestSettings), nullptr));
  if (!reply || reply->format != 8) return {};
  return textOfXSettings(
      {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<size_t>(xcb_get_property_value_length(reply.get()))},
      name);
}

}  // namespace tarnwick
