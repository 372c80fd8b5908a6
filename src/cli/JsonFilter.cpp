#include "cli/JsonFilter.h"

#include <charconv>
#include <utility>

namespace tarnwick {
namespace {

constexpr std::string_view replacement = "\\ufffd";
constexpr size_t codeUnitLength = replacement.size();

bool isHexDigit(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

/// The length of the whole number that `text` begins with, when it is so small that the reader takes it.
/// @return 0 when there is another number, or it may go on behind the end.
size_t smallNumberLength(std::string_view text) {
  constexpr size_t limit = 15;
  size_t length = 0;
  while (length < text.size() && NumberScanner::isDigit(text[length])) ++length;
  return length <= limit && length < text.size() && !NumberScanner::isPart(text[length]) ? length : 0;
}

}  // namespace

std::string_view JsonFilter::operator()() {
  for (;;) {
    if (rest_.empty()) rest_ = source_();
    // What else is held at the end belongs to a string that was never closed.
    if (rest_.empty()) return std::exchange(place_, Place::outside) == Place::number ? "0" : "";
    const std::string_view piece = place_ == Place::number   ? takeNumber()
                                   : place_ == Place::escape ? takeEscape()
                                                             : takeRun();
    if (!piece.empty()) return piece;
  }
}

/// Everything up to the next number or escape of a code unit, as it is. Nearly all of a text passes here.
std::string_view JsonFilter::takeRun() {
  const std::string_view text = rest_;
  size_t at = 0;
  Place place = place_;
  while (at < text.size()) {
    if (place == Place::string) {
      while (at < text.size() && text[at] != '"' && text[at] != '\\') ++at;
      if (at == text.size()) break;
      if (text[at] == '"') {
        place = Place::outside;
        ++at;
      } else if (at + 1 < text.size() && text[at + 1] != 'u') {
        at += 2;
      } else {
        place = Place::escape;
        break;
      }
    } else if (text[at] == '"') {
      place = Place::string;
      ++at;
    } else if (!NumberScanner::isStart(text[at])) {
      ++at;
    } else if (const size_t length = smallNumberLength(text.substr(at))) {
      at += length;
    } else {
      place = Place::number;
      number_ = {};
      break;
    }
  }
  place_ = place;
  rest_ = text.substr(at);
  return text.substr(0, at);
}

std::string_view JsonFilter::takeNumber() {
  size_t length = 0;
  while (length < rest_.size() && number_.take(rest_[length])) ++length;
  rest_.remove_prefix(length);
  if (rest_.empty()) return {};
  place_ = Place::outside;
  // No value begins or goes on with a plus sign: the reader stops there.
  return number_.isComplete() && !NumberScanner::isPart(rest_.front()) ? "0" : "+";
}

std::string_view JsonFilter::takeEscape() {
  while (!rest_.empty()) {
    const char byte = rest_.front();
    if (escape_.empty() && byte != '\\') {
      highHalf_.clear();
      place_ = Place::string;
      return replacement;
    }
    escape_ += byte;
    rest_.remove_prefix(1);
    const size_t length = escape_.size();
    const bool goesOn = length == 1 || (length == 2 ? byte == 'u' : isHexDigit(byte));
    if (!goesOn || length == codeUnitLength) return finishEscape(goesOn);
  }
  return {};
}

std::string_view JsonFilter::finishEscape(bool isCodeUnit) {
  const std::string escape = std::exchange(escape_, {});
  unsigned unit = 0;
  if (isCodeUnit) std::from_chars(escape.data() + 2, escape.data() + escape.size(), unit, 16);
  const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
  const bool isLow = unit >= 0xDC00 && unit < 0xE000;
  const bool isPair = isLow && !highHalf_.empty();

  output_ = isPair ? highHalf_ : highHalf_.empty() ? "" : replacement;
  if (!isHigh) output_ += isLow && !isPair ? replacement : escape;
  highHalf_ = isHigh ? escape : "";
  place_ = isHigh ? Place::escape : Place::string;
  return output_;
}

}  // namespace tarnwick
