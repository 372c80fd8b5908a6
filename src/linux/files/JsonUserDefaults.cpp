#include "linux/files/JsonUserDefaults.h"

#include <filesystem>

#include "base/AtomicFile.h"
#include "base/Utf8.h"

namespace tarnwick {
namespace {

// JSON is UTF-8, but file names need not be. A byte of them that is none stands as the half U+DC00 and its
// value of a surrogate pair.
constexpr size_t halfLength = 3;

std::string withHalves(std::string_view text) {
  std::string json;
  while (!text.empty()) {
    const size_t length = lengthOfCodePoint(text);
    const auto byte = static_cast<unsigned char>(text[0]);
    if (length > 0) {
      json += text.substr(0, length);
    } else {
      json += {'\xED', static_cast<char>(0xB0 | byte >> 6), static_cast<char>(0x80 | (byte & 0x3F))};
    }
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return json;
}

std::string withPlainBytes(std::string_view json) {
  std::string text;
  for (size_t at = 0; at < json.size();) {
    const auto byte = [&](size_t offset) { return static_cast<unsigned char>(json[at + offset]); };
    const bool stands =
        at + halfLength <= json.size() && byte(0) == 0xED && (byte(1) == 0xB2 || byte(1) == 0xB3);
    text += stands ? static_cast<char>((byte(1) & 0x03) << 6 | (byte(2) & 0x3F)) : json[at];
    at += stands ? halfLength : 1;
  }
  return text;
}

}  // namespace

JsonUserDefaults::JsonUserDefaults(const Folders& folders)
    : folder_(folders.configuration() + "/Tarnwick"), path_(folder_ + "/defaults.json") {
  makePrivateFolder(folder_);
  load();
}

JsonUserDefaults::FileState JsonUserDefaults::load() {
  std::string text;
  if (const std::error_code error = readFile(path_, text)) {
    return error == std::errc::no_such_file_or_directory ? FileState::absent : FileState::damaged;
  }
  auto json = parseJson(text);
  auto* members = json ? json->as<JsonObject>() : nullptr;
  if (!members) return FileState::damaged;
  members_ = std::move(*members);
  return FileState::whole;
}

std::optional<bool> JsonUserDefaults::boolean(const std::string& key) const {
  const bool* value = memberOf<bool>(members_, key);
  return value ? std::optional(*value) : std::nullopt;
}

std::optional<std::vector<std::string>> JsonUserDefaults::strings(const std::string& key) const {
  const auto* array = memberOf<JsonArray>(members_, key);
  if (!array) return std::nullopt;
  std::vector<std::string> strings;
  for (const JsonValue& element : *array) {
    const auto* text = element.as<std::string>();
    if (!text) return std::nullopt;
    strings.push_back(withPlainBytes(*text));
  }
  return strings;
}

void JsonUserDefaults::set(const std::string& key, bool value) { store(key, {value}); }

void JsonUserDefaults::set(const std::string& key, const std::vector<std::string>& value) {
  JsonArray array;
  for (const std::string& text : value) array.push_back({withHalves(text)});
  store(key, {std::move(array)});
}

void JsonUserDefaults::store(const std::string& key, JsonValue value) {
  const FileState state = load();
  if (state == FileState::damaged) keepAside();
  JsonValue& stored = members_[key];
  if (state == FileState::whole && stored == value) return;
  stored = std::move(value);
  (void)writePrivateFile(path_, writeJson({members_}));
}

void JsonUserDefaults::keepAside() const {
  std::string aside = path_ + ".damaged";
  std::error_code error;
  for (int number = 2; std::filesystem::exists(aside, error); ++number) {
    aside = path_ + ".damaged-" + std::to_string(number);
  }
  std::filesystem::rename(path_, aside, error);
}

}  // namespace tarnwick
