#pragma once
#include <string>
#include <string_view>

namespace tarnwick {

/// More than fits on any line that the notch draws.
inline constexpr size_t longestDisplayText = 200;

/// A text that somebody else wrote (the name of a tool, a track, a device), as one line that can be drawn
/// among our own words without changing how they look: at most `longest` user-perceived characters of it,
/// line breaks and tabs as blanks, and none of the characters that are not seen themselves but hide, turn
/// round or move what stands beside them (controls, directional formatting, zero-width characters, piles of
/// combining marks). Those that emoji and some scripts are written with stay there: joiners, variation
/// selectors, the tags of flags. What is not UTF-8 becomes U+FFFD. Takes bounded time, however long the text
/// is.
std::string displayText(std::string_view foreign, size_t longest = longestDisplayText);

}  // namespace tarnwick
