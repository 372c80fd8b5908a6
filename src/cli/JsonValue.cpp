#include "cli/JsonValue.h"

#define RAPIDJSON_WRITE_DEFAULT_FLAGS kWriteValidateEncodingFlag
#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>

#include "cli/NumberScanner.h"

namespace tarnwick {
namespace {

constexpr size_t deepestLevel = 512;

/// Whether all of `text` is one JSON number.
bool isNumber(std::string_view text) {
  NumberScanner scanner;
  return std::ranges::all_of(text, [&](char byte) { return scanner.take(byte); }) && scanner.isComplete();
}

/// Whether a string that the JSON reader decoded came from an escape of half a surrogate pair: the reader
/// lets a low half pass and encodes it as bytes that are not UTF-8.
bool hasLoneSurrogate(std::string_view decoded) {
  for (size_t at = decoded.find('\xED'); at != decoded.npos; at = decoded.find('\xED', at + 1)) {
    if (at + 1 < decoded.size() && static_cast<unsigned char>(decoded[at + 1]) >= 0xA0) return true;
  }
  return false;
}

/// Puts a zero and blanks in the place of every number outside strings, and returns the numbers in their
/// order: the JSON reader refuses what a double cannot hold, even when asked only for the text. What is no
/// number stays for the reader to complain about.
std::vector<std::string> takeNumbers(std::string& json) {
  std::vector<std::string> numbers;
  bool isInString = false;
  for (size_t at = 0; at < json.size(); ++at) {
    if (json[at] == '"') isInString = !isInString;
    if (json[at] == '\\') ++at;
    if (isInString || at >= json.size() || !NumberScanner::isStart(json[at])) continue;
    const auto end = std::find_if_not(json.begin() + at, json.end(), NumberScanner::isPart);
    const size_t length = static_cast<size_t>(end - json.begin()) - at;
    std::string number = json.substr(at, length);
    if (isNumber(number)) {
      json.replace(at, length, length, ' ');
      json[at] = '0';
      numbers.push_back(std::move(number));
    }
    at += length - 1;
  }
  return numbers;
}

/// Builds the value that the JSON reader reports.
class Builder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Builder> {
 public:
  explicit Builder(std::vector<std::string> numbers) : numbers_(std::move(numbers)) {}

  JsonValue root;
  /// What the builder itself did not accept.
  const char* complaint = nullptr;

  bool Null() { return place({nullptr}); }
  bool Bool(bool value) { return place({value}); }
  bool RawNumber(const char*, rapidjson::SizeType, bool) {
    // One more than was taken out is the start of something malformed, which the reader is about to meet.
    return nextNumber_ == numbers_.size() || place({JsonNumber{std::move(numbers_[nextNumber_++])}});
  }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return isText({text, length}) && place({std::string(text, length)});
  }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    key_.assign(text, length);
    return isText(key_);
  }
  bool StartArray() { return open({JsonArray()}); }
  bool StartObject() { return open({JsonObject()}); }
  bool EndArray(rapidjson::SizeType) { return close(); }
  bool EndObject(rapidjson::SizeType) { return close(); }

 private:
  bool isText(std::string_view decoded) {
    if (hasLoneSurrogate(decoded)) complaint = "The surrogate pair in string is invalid.";
    return !complaint;
  }

  bool place(JsonValue value) {
    put(std::move(value));
    return true;
  }

  JsonValue& put(JsonValue value) {
    if (open_.empty()) return root = std::move(value);
    if (auto* array = open_.back()->as<JsonArray>()) return array->emplace_back(std::move(value));
    return open_.back()->as<JsonObject>()->insert_or_assign(key_, std::move(value)).first->second;
  }

  bool open(JsonValue container) {
    if (open_.size() == deepestLevel) {
      complaint = "Too many nested arrays or objects.";
      return false;
    }
    open_.push_back(&put(std::move(container)));
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  std::vector<std::string> numbers_;
  size_t nextNumber_ = 0;
  std::vector<JsonValue*> open_;
  std::string key_;
};

using Writer = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

bool write(Writer& writer, const JsonValue& value);

bool write(Writer& writer, std::nullptr_t) { return writer.Null(); }
bool write(Writer& writer, bool value) { return writer.Bool(value); }
bool write(Writer& writer, const JsonNumber& number) {
  return writer.RawValue(number.text.data(), number.text.size(), rapidjson::kNumberType);
}
bool write(Writer& writer, const std::string& text) {
  return writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}
bool write(Writer& writer, const JsonArray& array) {
  writer.StartArray();
  for (const JsonValue& element : array) {
    if (!write(writer, element)) return false;
  }
  return writer.EndArray();
}
bool write(Writer& writer, const JsonObject& object) {
  writer.StartObject();
  for (const auto& [key, value] : object) {
    if (!write(writer, key) || !write(writer, value)) return false;
  }
  return writer.EndObject();
}
bool write(Writer& writer, const JsonValue& value) {
  return std::visit([&](const auto& alternative) { return write(writer, alternative); }, value.value);
}

}  // namespace

std::optional<JsonValue> parseJson(std::string text, std::string& error) {
  Builder builder(takeNumbers(text));
  rapidjson::MemoryStream stream(text.data(), text.size());
  rapidjson::Reader reader;
  constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag |
                             rapidjson::kParseNumbersAsStringsFlag;
  const rapidjson::ParseResult result = reader.Parse<flags>(stream, builder);
  // The reader takes a U+0000 for the end.
  if (!result.IsError() && stream.Tell() == text.size()) return std::move(builder.root);
  const char* reason = result.IsError() ? rapidjson::GetParseError_En(result.Code()) : "Invalid value.";
  const size_t offset = result.IsError() ? result.Offset() : stream.Tell();
  error = std::string(builder.complaint ? builder.complaint : reason) + " (at byte " +
          std::to_string(offset) + ")";
  return std::nullopt;
}

std::optional<std::string> writeJson(const JsonValue& value) {
  rapidjson::StringBuffer buffer;
  Writer writer(buffer);
  writer.SetIndent(' ', 2);
  if (!write(writer, value)) return std::nullopt;
  buffer.Put('\n');
  return std::string(buffer.GetString(), buffer.GetSize());
}

}  // namespace tarnwick
