#include "base/DisplayText.h"

#include <utf8proc.h>

#include <algorithm>
#include <utility>

namespace tarnwick {
namespace {

/// Scripts pile up two or three marks.
constexpr int mostMarks = 8;
/// Of a flag: five for the region, and the end.
constexpr int mostTags = 7;
/// Families are written with four people.
constexpr size_t codePointsPerCharacter = 4;
/// What is left out counts too, or a long text of nothing else would take long to read.
constexpr size_t readPerCharacter = 16;

constexpr char32_t zeroWidthNonJoiner = 0x200C, zeroWidthJoiner = 0x200D, blackFlag = 0x1F3F4;
constexpr int virama = 9;

struct CodePoint {
  char32_t value = 0;
  std::string_view bytes;
  const utf8proc_property_t* properties = nullptr;

  bool isPictograph() const { return properties->boundclass == UTF8PROC_BOUNDCLASS_EXTENDED_PICTOGRAPHIC; }
  bool isMark() const {
    return properties->category >= UTF8PROC_CATEGORY_MN && properties->category <= UTF8PROC_CATEGORY_ME;
  }
  bool isVariationSelector() const {
    return (value >= 0xFE00 && value <= 0xFE0F) || (value >= 0xE0100 && value <= 0xE01EF);
  }
  bool isTag() const { return value >= 0xE0020 && value <= 0xE007F; }
  bool isArabic() const { return properties->bidi_class == UTF8PROC_BIDI_CLASS_AL; }
  bool breaksLine() const {
    return (value >= '\t' && value <= '\r') || value == 0x85 || value == 0x2028 || value == 0x2029;
  }
  /// Drawn itself, and doing nothing else.
  bool isPlain() const {
    const auto category = properties->category;
    if (properties->ignorable || category == UTF8PROC_CATEGORY_CC) return false;
    // The signs that Arabic numbers are written under are seen.
    return category != UTF8PROC_CATEGORY_CF || properties->boundclass == UTF8PROC_BOUNDCLASS_PREPEND;
  }
};

/// Takes the first code point off `text`; what is none becomes U+FFFD.
CodePoint next(std::string_view& text) {
  utf8proc_int32_t value;
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const utf8proc_ssize_t length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &value);
  const bool isValid = length > 0;
  const CodePoint found{isValid ? static_cast<char32_t>(value) : 0xFFFD,
      isValid ? text.substr(0, static_cast<size_t>(length)) : "\xEF\xBF\xBD",
      utf8proc_get_property(isValid ? value : 0xFFFD)};
  text.remove_prefix(isValid ? static_cast<size_t>(length) : 1);
  return found;
}

class Line {
 public:
  explicit Line(size_t longest) : longest_(longest) {}

  /// @param rest what follows `each`
  /// @return false once the line is full
  bool add(const CodePoint& each, std::string_view rest) {
    if (each.breaksLine()) {
      while (line_.ends_with(' ')) line_.pop_back();
      isBroken_ = !line_.empty();
      return true;
    }
    if (isBroken_ && each.value == ' ') return true;
    if (!stays(each, rest)) return true;
    if (std::exchange(isBroken_, false) && !append({' ', " ", utf8proc_get_property(' ')})) return false;
    return append(each);
  }
  std::string take() { return std::move(line_); }

 private:
  bool stays(const CodePoint& each, std::string_view rest) const {
    if (each.value == zeroWidthJoiner || each.value == zeroWidthNonJoiner) return joins(each, rest);
    if (each.isTag()) return tags_ > 0 && tags_ <= mostTags;
    // One that begins the text would fall upon our own words.
    if (each.isVariationSelector()) return last_.properties && !last_.isVariationSelector();
    return each.isPlain() && (!each.isMark() || (last_.properties && marks_ < mostMarks));
  }
  /// Emoji are joined to others. For letters see the contextual rules of RFC 5892, appendix A.
  bool joins(const CodePoint& each, std::string_view rest) const {
    if (!last_.properties || rest.empty()) return false;
    const CodePoint following = next(rest);
    if (last_.properties->combining_class == virama) return true;
    if (each.value == zeroWidthJoiner) return pictograph_ && following.isPictograph();
    return arabic_ && following.isArabic();
  }

  bool append(const CodePoint& each) {
    const bool begins =
        !last_.properties ||
        utf8proc_grapheme_break_stateful(
            static_cast<utf8proc_int32_t>(last_.value), static_cast<utf8proc_int32_t>(each.value), &state_);
    characters_ += begins;
    if (characters_ > longest_ || ++codePoints_ > longest_ * codePointsPerCharacter) return false;
    line_ += each.bytes;
    const bool extends = each.isMark() || each.properties->boundclass == UTF8PROC_BOUNDCLASS_EXTEND;
    if (!extends) {
      pictograph_ = each.isPictograph();
      arabic_ = each.isArabic();
    }
    marks_ = each.isMark() ? marks_ + 1 : 0;
    tags_ = each.value == blackFlag ? 1 : each.isTag() ? tags_ + 1 : 0;
    last_ = each;
    return true;
  }

  const size_t longest_;
  std::string line_;
  size_t characters_ = 0, codePoints_ = 0;
  CodePoint last_;
  utf8proc_int32_t state_ = 0;
  /// Blanks are wanted before what follows.
  bool isBroken_ = false;
  /// The last one that is no mark was of that kind.
  bool pictograph_ = false, arabic_ = false;
  int marks_ = 0, tags_ = 0;
};

}  // namespace

std::string displayText(std::string_view foreign, size_t longest) {
  const bool isPlainAscii = foreign.size() <= longest && std::ranges::all_of(foreign, [](char c) {
    return c >= ' ' && c < '\x7f';
  });
  if (isPlainAscii) return std::string(foreign);
  Line line(longest);
  for (size_t left = longest * readPerCharacter; left > 0 && !foreign.empty(); --left) {
    const CodePoint each = next(foreign);
    if (!line.add(each, foreign)) break;
  }
  return line.take();
}

}  // namespace tarnwick
