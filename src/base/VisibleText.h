#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

/// A piece of a text that is to be seen as it is.
struct VisiblePart {
  std::string text;
  /// It stands for a character that could not be seen by itself.
  bool isSubstitute = false;

  friend bool operator==(const VisiblePart&, const VisiblePart&) = default;
};

/// A line that somebody else wrote, with nothing left out and nothing hidden. In the place of what is not
/// seen itself, or looks like a blank, or hides, turns round or moves what stands beside it (controls,
/// joiners, directional formatting, spaces other than U+0020, more than two combining marks on one
/// character), and of what has no meaning of its own (private and unassigned code points) stands its number,
/// such as "<U+202E>"; a tab is an arrow. What is not UTF-8 becomes U+FFFD.
std::vector<VisiblePart> visibleParts(std::string_view line);

}  // namespace tarnwick
