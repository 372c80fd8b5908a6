#include "base/KeyChord.h"

#include <algorithm>

namespace tarnwick {
namespace {

constexpr struct {
  std::string_view name;
  bool KeyChord::*member;
} modifiers[] = {{"Ctrl", &KeyChord::control}, {"Alt", &KeyChord::alt}, {"Shift", &KeyChord::shift},
    {"Super", &KeyChord::super}};

bool isFunctionKey(std::string_view name) {
  const std::string_view number = name.substr(std::min<size_t>(1, name.size()));
  return name.starts_with('F') && !number.empty() &&
         std::ranges::all_of(number, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::optional<KeyChord> KeyChord::parse(std::string_view text) {
  KeyChord chord;
  for (size_t plus = text.find('+'); plus != text.npos; plus = text.find('+')) {
    const auto* modifier =
        std::ranges::find(modifiers, text.substr(0, plus), [](const auto& each) { return each.name; });
    if (modifier == std::end(modifiers)) return std::nullopt;
    chord.*(modifier->member) = true;
    text.remove_prefix(plus + 1);
  }
  chord.key = text;
  return text.empty() ? std::nullopt : std::optional(chord);
}

std::string KeyChord::text() const {
  std::string text;
  for (const auto& [name, member] : modifiers) {
    if (this->*member) (text += name) += '+';
  }
  return text + key;
}

bool KeyChord::isReserved() const {
  return control || alt || super || isFunctionKey(key) || key.starts_with("XF86");
}

}  // namespace tarnwick
