#include "base/Characters.h"

#include <utf8proc.h>

namespace tarnwick {
namespace {

struct CodePoint {
  utf8proc_int32_t value;
  size_t length;
};

CodePoint firstCodePoint(std::string_view text) {
  utf8proc_int32_t value;
  const auto bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const utf8proc_ssize_t length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &value);
  if (length <= 0) return {0xFFFD, 1};
  return {value, static_cast<size_t>(length)};
}

}  // namespace

std::string_view firstCharacters(std::string_view text, size_t count, size_t maximumBytes) {
  // No text has more characters than bytes: the usual short one needs no look at the character tables.
  if (text.size() <= count && text.size() <= maximumBytes) return text;
  utf8proc_int32_t previous = 0, state = 0;
  size_t position = 0, characters = 0;
  while (position < text.size()) {
    const CodePoint next = firstCodePoint(text.substr(position));
    if (position == 0 || utf8proc_grapheme_break_stateful(previous, next.value, &state)) {
      if (characters == count) break;
      ++characters;
    }
    if (position + next.length > maximumBytes) break;
    position += next.length;
    previous = next.value;
  }
  return text.substr(0, position);
}

}  // namespace tarnwick
