#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarnwick {

struct JsonValue;
using JsonArray = std::vector<JsonValue>;
using JsonObject = std::map<std::string, JsonValue, std::less<>>;

/// A number as it is written, whatever its size or precision.
struct JsonNumber {
  std::string text;

  /// None when a double cannot hold it.
  std::optional<double> real() const;
  /// None unless it is written as a whole number of this size.
  std::optional<int64_t> integer() const;
  friend bool operator==(const JsonNumber&, const JsonNumber&) = default;
};

/// A JSON value of which nothing is lost from reading to writing but the order of keys: objects are sorted by
/// key, and of a key given twice the last value is kept. Strings are UTF-8; where one holds half a surrogate
/// pair, that is encoded as if it were a character.
struct JsonValue {
  std::variant<std::nullptr_t, bool, JsonNumber, std::string, JsonArray, JsonObject> value;

  template<class Type>
  const Type* as() const {
    return std::get_if<Type>(&value);
  }
  template<class Type>
  Type* as() {
    return std::get_if<Type>(&value);
  }
  friend bool operator==(const JsonValue& one, const JsonValue& other) { return one.value == other.value; }
};

/// The value of a key, when it is there and of that type; null otherwise.
template<class Type, class Object>
auto* memberOf(Object& object, std::string_view key) {
  const auto found = object.find(key);
  return found == object.end() ? nullptr : found->second.template as<Type>();
}

/// Reads a JSON text, of any top-level type. @param error what is wrong and where, when nothing is returned:
/// malformed JSON, invalid UTF-8, or more than 512 levels.
std::optional<JsonValue> parseJson(std::string_view text, std::string& error);
/// The same for whoever does not care what is wrong.
std::optional<JsonValue> parseJson(std::string_view text);

/// The value on several lines with an indentation of two blanks and a line break at the end; slashes and
/// characters outside ASCII are not escaped.
std::string writeJson(const JsonValue& value);

}  // namespace tarnwick
