#include "base/VisibleText.h"

#include <utf8proc.h>

#include <cstdio>

#include "base/Utf8.h"

namespace tarnwick {
namespace {

constexpr int mostMarks = 2;
constexpr utf8proc_int32_t brailleBlank = 0x2800;

bool isMark(utf8proc_category_t category) {
  return category >= UTF8PROC_CATEGORY_MN && category <= UTF8PROC_CATEGORY_ME;
}

/// Whether it is drawn, and is what it looks like.
bool isSeen(utf8proc_int32_t value) {
  const auto* properties = utf8proc_get_property(value);
  switch (static_cast<utf8proc_category_t>(properties->category)) {
    case UTF8PROC_CATEGORY_CN:
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_CO:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return false;
    case UTF8PROC_CATEGORY_ZS:
      return value == ' ';
    default:
      return !properties->ignorable && value != brailleBlank;
  }
}

std::string numberOf(utf8proc_int32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "<U+%04X>", static_cast<unsigned>(value));
  return text;
}

}  // namespace

std::vector<VisiblePart> visibleParts(std::string_view line) {
  std::vector<VisiblePart> parts;
  const auto add = [&](std::string_view text, bool isSubstitute) {
    if (parts.empty() || parts.back().isSubstitute != isSubstitute) parts.push_back({"", isSubstitute});
    parts.back().text += text;
  };
  // One at the beginning would fall upon what stands before the line.
  int marks = mostMarks;
  while (!line.empty()) {
    utf8proc_int32_t value;
    const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(line.data());
    const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(line.size()), &value);
    const std::string_view character =
        length > 0 ? line.substr(0, static_cast<size_t>(length)) : replacementCharacter;
    line.remove_prefix(length > 0 ? character.size() : 1);
    const bool marksAnother = length > 0 && isMark(utf8proc_category(value));
    if (character == "\t") {
      add("→   ", true);
      marks = mostMarks;
    } else if (length > 0 && (!isSeen(value) || (marksAnother && marks == mostMarks))) {
      add(numberOf(value), true);
      marks = mostMarks;
    } else {
      add(character, false);
      marks = marksAnother ? marks + 1 : 0;
    }
  }
  return parts;
}

}  // namespace tarnwick
