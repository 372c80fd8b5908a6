#pragma once
#include <string>

#include "json/JsonReader.h"

namespace tarnwick {

/// Writes down what it is told, as JSON without blanks between its parts: keys in their order, numbers as
/// they are written.
class JsonCopy : public JsonHandler {
 public:
  /// @param longest of more bytes than that nothing is kept
  explicit JsonCopy(size_t longest) : longest_(longest) {}

  void clear();
  /// Empty where it has become too long.
  const std::string& text() const { return text_; }

  void beginObject() override { begin('{', '}'); }
  void beginArray() override { begin('[', ']'); }
  void endContainer() override;
  void key(std::string_view part, bool isEnd) override;
  void string(std::string_view part, bool isEnd) override;
  void number(std::string_view part, bool isEnd) override;
  void boolean(bool value) override { number(value ? "true" : "false", true); }
  void null() override { number("null", true); }

 private:
  void begin(char bracket, char end);
  void separate();
  void write(std::string_view part);
  void quote(std::string_view part, bool isEnd);

  const size_t longest_;
  std::string text_;
  /// What ends the containers that are open.
  std::string ends_;
  bool needsComma_ = false, isInside_ = false, isTooLong_ = false;
};

}  // namespace tarnwick
