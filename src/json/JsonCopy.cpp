#include "json/JsonCopy.h"

#include "json/JsonString.h"

namespace tarnwick {

void JsonCopy::clear() {
  text_.clear();
  ends_.clear();
  needsComma_ = isInside_ = isTooLong_ = false;
}

void JsonCopy::begin(char bracket, char end) {
  separate();
  write({&bracket, 1});
  ends_ += end;
  needsComma_ = false;
}

void JsonCopy::endContainer() {
  write({&ends_.back(), 1});
  ends_.pop_back();
  needsComma_ = true;
}

void JsonCopy::key(std::string_view part, bool isEnd) {
  quote(part, isEnd);
  if (!isEnd) return;
  write(":");
  needsComma_ = false;
}

void JsonCopy::string(std::string_view part, bool isEnd) {
  quote(part, isEnd);
  if (isEnd) needsComma_ = true;
}

void JsonCopy::number(std::string_view part, bool isEnd) {
  if (!isInside_) separate();
  write(part);
  isInside_ = !isEnd;
  if (isEnd) needsComma_ = true;
}

void JsonCopy::quote(std::string_view part, bool isEnd) {
  if (!isInside_) {
    separate();
    write("\"");
  }
  const std::string quoted = jsonString(part);
  write(std::string_view(quoted).substr(1, quoted.size() - 2));
  isInside_ = !isEnd;
  if (isEnd) write("\"");
}

void JsonCopy::separate() {
  if (needsComma_) write(",");
}

void JsonCopy::write(std::string_view part) {
  isTooLong_ = isTooLong_ || text_.size() + part.size() > longest_;
  if (isTooLong_)
    text_.clear();
  else
    text_ += part;
}

}  // namespace tarnwick
