#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

/// A key with the modifiers that are held with it.
struct KeyChord {
  bool control = false, alt = false, shift = false, super = false;
  /// What the key means, by its name in the X keyboard extension, without "XKB_KEY_": "n", "F5", "Return". A
  /// letter is a small one, also with shift.
  std::string key;

  /// From "Ctrl+Alt+Shift+Super+n", with any of the modifiers, in whatever order. None when it is no chord.
  static std::optional<KeyChord> parse(std::string_view text);
  std::string text() const;
  /// Whether it may be taken from all other programs: nobody types with it.
  bool isReserved() const;

  friend bool operator==(const KeyChord&, const KeyChord&) = default;
};

}  // namespace tarnwick
