#include "linux/files/JsonMembers.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "base/Utf8.h"

namespace tarnwick {
namespace {

/// Steps over JSON values. Each step answers whether what it names stood there; all but `string` and `word`
/// pass the blanks before it.
class JsonScanner {
 public:
  explicit JsonScanner(std::string_view text) : text_(text) {}

  bool object(std::vector<JsonMember>& members, int depth = 0) {
    if (!take('{')) return false;
    if (take('}')) return true;
    do {
      JsonMember member;
      if (!take(member.key, [&] { return string(); }) || !take(':') ||
          !take(member.value, [&] { return value(depth + 1); })) {
        return false;
      }
      members.push_back(std::move(member));
    } while (take(','));
    return take('}');
  }
  bool atEnd() {
    skipBlanks();
    return at_ == text_.size();
  }

 private:
  static constexpr int deepestLevel = 512;
  static constexpr std::string_view digits = "0123456789", hexDigits = "0123456789abcdefABCDEF";

  bool value(int depth) {
    if (depth > deepestLevel) return false;
    if (next() == '"') return string();
    if (next() == '[') return array(depth);
    std::vector<JsonMember> ignored;
    if (next() == '{') return object(ignored, depth);
    return word("true") || word("false") || word("null") || number();
  }
  bool array(int depth) {
    take('[');
    if (take(']')) return true;
    do {
      skipBlanks();
      if (!value(depth + 1)) return false;
    } while (take(','));
    return take(']');
  }
  bool string() {
    if (!anyOf("\"")) return false;
    while (!anyOf("\"")) {
      if (static_cast<unsigned char>(next()) < ' ') return false;
      if (text_[at_++] == '\\' && !escape()) return false;
    }
    return true;
  }
  bool escape() {
    if (!anyOf("u")) return anyOf("\"\\/bfnrt");
    for (int i = 0; i < 4; ++i) {
      if (!anyOf(hexDigits)) return false;
    }
    return true;
  }
  bool number() {
    anyOf("-");
    if (!anyOf("0") && !someDigits()) return false;
    if (anyOf(".") && !someDigits()) return false;
    if (!anyOf("eE")) return true;
    anyOf("+-");
    return someDigits();
  }
  bool someDigits() {
    if (!anyOf(digits)) return false;
    while (anyOf(digits)) {
    }
    return true;
  }
  bool word(std::string_view word) {
    const bool found = text_.substr(at_).starts_with(word);
    if (found) at_ += word.size();
    return found;
  }

  /// NUL at the end, which no step accepts.
  char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  void skipBlanks() {
    while (anyOf(" \t\r\n")) {
    }
  }
  bool anyOf(std::string_view characters) {
    const bool found = at_ < text_.size() && characters.find(text_[at_]) != characters.npos;
    at_ += found;
    return found;
  }
  bool take(char character) {
    skipBlanks();
    return anyOf({&character, 1});
  }
  template<typename Step>
  bool take(std::string& text, Step step) {
    skipBlanks();
    const size_t start = at_;
    const bool found = step();
    text = text_.substr(start, at_ - start);
    return found;
  }

  std::string_view text_;
  size_t at_ = 0;
};

/// Puts bytes back in the place of the halves of characters that stand for them: U+DCxx, decoded as if it
/// were a character.
std::string withPlainBytes(std::string_view text) {
  constexpr size_t length = 3;
  std::string plain;
  for (size_t at = 0; at < text.size();) {
    const auto byte = [&](size_t offset) { return static_cast<unsigned char>(text[at + offset]); };
    const bool stands = at + length <= text.size() && byte(0) == 0xed && (byte(1) == 0xb2 || byte(1) == 0xb3);
    plain += stands ? static_cast<char>((byte(1) & 0x03) << 6 | (byte(2) & 0x3f)) : text[at];
    at += stands ? length : 1;
  }
  return plain;
}

}  // namespace

std::optional<std::vector<JsonMember>> membersOfObject(std::string_view json) {
  std::vector<JsonMember> members;
  JsonScanner scanner(json);
  if (!isValidUtf8(json) || !scanner.object(members) || !scanner.atEnd()) return std::nullopt;
  return members;
}

std::string jsonString(std::string_view text) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer(buffer).String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  std::string_view written(buffer.GetString(), buffer.GetSize());
  std::string json;
  while (!written.empty()) {
    size_t length = lengthOfCodePoint(written);
    if (length > 0) {
      json += written.substr(0, length);
    } else {
      const auto byte = static_cast<unsigned char>(written[0]);
      json += {'\\', 'u', 'd', 'c', "0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]};
      length = 1;
    }
    written.remove_prefix(length);
  }
  return json;
}

std::optional<std::vector<std::string>> stringsOfArray(std::string_view json) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseIterativeFlag>(json.data(), json.size());
  if (!document.IsArray()) return std::nullopt;
  std::vector<std::string> strings;
  for (const auto& element : document.GetArray()) {
    if (!element.IsString()) return std::nullopt;
    strings.push_back(withPlainBytes({element.GetString(), element.GetStringLength()}));
  }
  return strings;
}

}  // namespace tarnwick
