#pragma once
#include <string>
#include <string_view>

namespace tarnwick {

/// U+FEFF, which some programs write at the head of a file.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
/// U+FFFD, in the place of what is no character.
inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

bool isValidUtf8(std::string_view text);

/// `text` with every byte that is not part of valid UTF-8, and every U+0000, replaced by U+FFFD.
std::string withoutInvalidUtf8(std::string_view text);

/// The bytes of the code point that `text` begins with; 0 where none does.
size_t lengthOfCodePoint(std::string_view text);

/// How many bytes at the beginning of `text` are ASCII other than U+0000.
size_t lengthOfPlainAscii(std::string_view text);

}  // namespace tarnwick
