#include "json/JsonValue.h"

#include <charconv>
#include <utility>

#include "base/Utf8.h"
#include "json/JsonReader.h"
#include "json/JsonString.h"

namespace tarnwick {
namespace {

template<typename Number>
std::optional<Number> parsed(const std::string& text) {
  Number number;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

/// Builds the value that the reader tells of.
class Builder : public JsonHandler {
 public:
  JsonValue root;

  void beginObject() override { open_.push_back(&place({JsonObject()})); }
  void beginArray() override { open_.push_back(&place({JsonArray()})); }
  void endContainer() override { open_.pop_back(); }
  void key(std::string_view part, bool isEnd) override {
    text_ += part;
    if (isEnd) key_ = take();
  }
  void string(std::string_view part, bool isEnd) override {
    text_ += part;
    if (isEnd) place({take()});
  }
  void number(std::string_view part, bool isEnd) override {
    text_ += part;
    if (isEnd) place({JsonNumber{take()}});
  }
  void boolean(bool value) override { place({value}); }
  void null() override { place({nullptr}); }

 private:
  std::string take() { return std::exchange(text_, {}); }

  JsonValue& place(JsonValue value) {
    if (open_.empty()) return root = std::move(value);
    if (auto* array = open_.back()->as<JsonArray>()) return array->emplace_back(std::move(value));
    return open_.back()->as<JsonObject>()->insert_or_assign(std::move(key_), std::move(value)).first->second;
  }

  std::vector<JsonValue*> open_;
  std::string key_, text_;
};

struct Writer {
  std::string json;
  size_t depth = 0;

  void operator()(std::nullptr_t) { json += "null"; }
  void operator()(bool value) { json += value ? "true" : "false"; }
  void operator()(const JsonNumber& number) { json += number.text; }
  void operator()(const std::string& text) { json += jsonString(text); }
  void operator()(const JsonArray& array) {
    list('[', array, ']', [&](const JsonValue& element) { std::visit(*this, element.value); });
  }
  void operator()(const JsonObject& object) {
    list('{', object, '}', [&](const auto& member) {
      (json += jsonString(member.first)) += ": ";
      std::visit(*this, member.second.value);
    });
  }

 private:
  void list(char start, const auto& elements, char end, auto write) {
    json += start;
    ++depth;
    for (const auto& element : elements) {
      if (&element != &*elements.begin()) json += ',';
      breakLine();
      write(element);
    }
    --depth;
    if (!elements.empty()) breakLine();
    json += end;
  }
  void breakLine() { (json += '\n').append(2 * depth, ' '); }
};

}  // namespace

std::optional<double> JsonNumber::real() const { return parsed<double>(text); }
std::optional<int64_t> JsonNumber::integer() const { return parsed<int64_t>(text); }

std::optional<JsonValue> parseJson(std::string_view text, std::string& error) {
  Builder builder;
  JsonReader reader(builder, JsonReader::Halves::kept);
  if (!isValidUtf8(text)) {
    error = "invalid UTF-8";
  } else if (reader.read(text) && reader.finish()) {
    return std::move(builder.root);
  } else {
    error = reader.error();
  }
  return std::nullopt;
}

std::optional<JsonValue> parseJson(std::string_view text) {
  std::string ignored;
  return parseJson(text, ignored);
}

std::string writeJson(const JsonValue& value) {
  Writer writer;
  std::visit(writer, value.value);
  return std::move(writer.json += '\n');
}

}  // namespace tarnwick
