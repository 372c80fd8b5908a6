#include "json/JsonReader.h"

// The library's sources; no other file includes them.
#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/src.hpp>
#include <charconv>
#include <utility>

#include "base/Utf8.h"

namespace tarnwick {
namespace {

constexpr size_t deepestLevel = 512;
/// Of \uXXXX.
constexpr size_t escapeLength = 6;

bool isHigh(unsigned unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLow(unsigned unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// The code unit that `text` begins with an escape of; 0 where it does not.
unsigned escapedUnit(std::string_view text) {
  unsigned unit = 0;
  if (text.size() >= escapeLength && text.starts_with("\\u")) {
    std::from_chars(text.data() + 2, text.data() + escapeLength, unit, 16);
  }
  return unit;
}

/// Hands on to a handler of ours what the library tells.
struct Listener {
  using error_code = boost::json::error_code;
  using Text = boost::json::string_view;

  static constexpr size_t max_object_size = SIZE_MAX, max_array_size = SIZE_MAX, max_key_size = SIZE_MAX,
                          max_string_size = SIZE_MAX;

  explicit Listener(JsonHandler& target) : handler(target) {}
  JsonHandler& handler;

  static std::string_view view(Text text) { return {text.data(), text.size()}; }
  template<typename... Parameters, typename... Arguments>
  bool tell(void (JsonHandler::*what)(Parameters...), Arguments... arguments) {
    (handler.*what)(arguments...);
    return true;
  }

  bool on_document_begin(error_code&) { return true; }
  bool on_document_end(error_code&) { return true; }
  bool on_object_begin(error_code&) { return tell(&JsonHandler::beginObject); }
  bool on_object_end(size_t, error_code&) { return tell(&JsonHandler::endContainer); }
  bool on_array_begin(error_code&) { return tell(&JsonHandler::beginArray); }
  bool on_array_end(size_t, error_code&) { return tell(&JsonHandler::endContainer); }
  bool on_key_part(Text part, size_t, error_code&) { return tell(&JsonHandler::key, view(part), false); }
  bool on_key(Text part, size_t, error_code&) { return tell(&JsonHandler::key, view(part), true); }
  bool on_string_part(Text part, size_t, error_code&) {
    return tell(&JsonHandler::string, view(part), false);
  }
  bool on_string(Text part, size_t, error_code&) { return tell(&JsonHandler::string, view(part), true); }
  bool on_number_part(Text part, error_code&) { return tell(&JsonHandler::number, view(part), false); }
  bool on_int64(int64_t, Text part, error_code&) { return tell(&JsonHandler::number, view(part), true); }
  bool on_uint64(uint64_t, Text part, error_code&) { return tell(&JsonHandler::number, view(part), true); }
  bool on_double(double, Text part, error_code&) { return tell(&JsonHandler::number, view(part), true); }
  bool on_bool(bool value, error_code&) { return tell(&JsonHandler::boolean, value); }
  bool on_null(error_code&) { return tell(&JsonHandler::null); }
  bool on_comment_part(Text, error_code&) { return true; }
  bool on_comment(Text, error_code&) { return true; }
};

boost::json::parse_options options(JsonReader::Halves halves) {
  boost::json::parse_options result;
  result.max_depth = deepestLevel;
  result.allow_invalid_utf8 = halves == JsonReader::Halves::kept;
  return result;
}

}  // namespace

struct JsonReader::Parser {
  Parser(JsonHandler& handler, Halves halves) : parser(options(halves), handler) {}
  boost::json::basic_parser<Listener> parser;
  boost::json::error_code error;
};

JsonReader::JsonReader(JsonHandler& handler, Halves halves)
    : parser_(std::make_unique<Parser>(handler, halves)), halves_(halves) {}

JsonReader::~JsonReader() = default;

bool JsonReader::take(std::string_view bytes, bool isLast) {
  const std::string joined = held_.empty() ? std::string() : std::exchange(held_, {}).append(bytes);
  if (!joined.empty()) bytes = joined;
  if (isAtStart_) {
    if (bytes.size() < byteOrderMark.size() && !isLast) {
      held_ = bytes;
      return true;
    }
    isAtStart_ = false;
    if (bytes.starts_with(byteOrderMark)) {
      bytes.remove_prefix(byteOrderMark.size());
      offset_ += byteOrderMark.size();
    }
  }
  // The library takes halves of surrogate pairs for an error, but the grammar allows them, and programs write
  // them that cut a text inside an emoji. A backslash outside strings is one, whatever follows it.
  for (size_t at = 0; (at = bytes.find('\\', at)) != bytes.npos;) {
    const std::string_view escapes = bytes.substr(at);
    if (escapes.size() < 2 * escapeLength && !isLast) {
      held_ = escapes;
      bytes.remove_suffix(escapes.size());
      break;
    }
    const unsigned unit = escapedUnit(escapes);
    const bool isPair = isHigh(unit) && isLow(escapedUnit(escapes.substr(escapeLength)));
    if (isPair || (!isHigh(unit) && !isLow(unit))) {
      at += isPair ? 2 * escapeLength : 2;
      continue;
    }
    if (!parse(bytes.substr(0, at), false) || !passHalf(unit)) return false;
    bytes = escapes.substr(escapeLength);
    at = 0;
  }
  return parse(bytes, isLast);
}

bool JsonReader::passHalf(unsigned unit) {
  const char bytes[] = {static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
      static_cast<char>(0x80 | (unit & 0x3F))};
  const std::string_view half =
      halves_ == Halves::kept ? std::string_view(bytes, sizeof bytes) : replacementCharacter;
  const bool isTaken = parse(half, false);
  if (isTaken) offset_ += escapeLength - half.size();
  return isTaken;
}

bool JsonReader::parse(std::string_view bytes, bool isLast) {
  if (parser_->error) return false;
  const size_t length = parser_->parser.write_some(!isLast, bytes.data(), bytes.size(), parser_->error);
  offset_ += length;
  if (!parser_->error && length < bytes.size()) parser_->error = boost::json::error::extra_data;
  return !parser_->error;
}

std::string JsonReader::error() const {
  return parser_->error.message() + " (at byte " + std::to_string(offset_) + ")";
}

}  // namespace tarnwick
