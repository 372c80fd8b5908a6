#include "platform/linux/JsonUserDefaults.h"

#include <rapidjson/document.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "base/AtomicFile.h"

namespace tarnwick {
namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

/// Cuts an object into its keys and the texts of their values. Numbers come as they were written, so that
/// none is rounded on its way through this program.
class TopLevelReader : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, TopLevelReader> {
 public:
  explicit TopLevelReader(std::function<void(std::string, std::string)> take) : take_(std::move(take)) {}

  bool Null() {
    return value([](Writer& writer) { writer.Null(); });
  }
  bool Bool(bool b) {
    return value([=](Writer& writer) { writer.Bool(b); });
  }
  bool RawNumber(const char* text, rapidjson::SizeType length, bool) {
    return value([=](Writer& writer) { writer.RawValue(text, length, rapidjson::kNumberType); });
  }
  bool String(const char* text, rapidjson::SizeType length, bool) {
    return value([=](Writer& writer) { writer.String(text, length); });
  }
  bool Key(const char* text, rapidjson::SizeType length, bool) {
    if (depth_ == 1) {
      key_.assign(text, length);
    } else {
      writer_.Key(text, length);
    }
    return true;
  }
  bool StartObject() {
    if (depth_++ > 0) writer_.StartObject();
    return true;
  }
  bool EndObject(rapidjson::SizeType) {
    if (--depth_ > 0) {
      writer_.EndObject();
      finishValue();
    }
    return true;
  }
  bool StartArray() {
    if (depth_++ == 0) return false;
    writer_.StartArray();
    return true;
  }
  bool EndArray(rapidjson::SizeType) {
    --depth_;
    writer_.EndArray();
    finishValue();
    return true;
  }

 private:
  template<typename Write>
  bool value(Write write) {
    if (depth_ == 0) return false;
    write(writer_);
    finishValue();
    return true;
  }
  void finishValue() {
    if (depth_ != 1) return;
    take_(key_, {buffer_.GetString(), buffer_.GetSize()});
    buffer_.Clear();
    writer_.Reset(buffer_);
  }

  std::function<void(std::string, std::string)> take_;
  rapidjson::StringBuffer buffer_;
  Writer writer_{buffer_};
  int depth_ = 0;
  std::string key_;
};

std::string quoted(const std::string& text) {
  rapidjson::StringBuffer buffer;
  Writer(buffer).String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace

JsonUserDefaults::JsonUserDefaults(const Folders& folders)
    : folder_(folders.configuration() + "/Tarnwick"), path_(folder_ + "/defaults.json") {
  load();
}

JsonUserDefaults::FileState JsonUserDefaults::load() {
  std::string text;
  if (const std::error_code error = readFile(path_, text)) {
    return error == std::errc::no_such_file_or_directory ? FileState::absent : FileState::damaged;
  }
  std::vector<Entry> entries;
  TopLevelReader handler([&](std::string key, std::string json) {
    entries.push_back({std::move(key), std::move(json)});
  });
  rapidjson::MemoryStream stream(text.data(), text.size());
  constexpr unsigned flags = rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag |
                             rapidjson::kParseValidateEncodingFlag;
  if (rapidjson::Reader().Parse<flags>(stream, handler).IsError()) return FileState::damaged;
  entries_ = std::move(entries);
  return FileState::whole;
}

const std::string* JsonUserDefaults::find(const std::string& key) const {
  const auto entry =
      std::find_if(entries_.begin(), entries_.end(), [&](const Entry& each) { return each.key == key; });
  return entry == entries_.end() ? nullptr : &entry->json;
}

std::optional<bool> JsonUserDefaults::boolean(const std::string& key) const {
  const std::string* json = find(key);
  if (json && *json == "true") return true;
  if (json && *json == "false") return false;
  return std::nullopt;
}

std::optional<std::vector<std::string>> JsonUserDefaults::strings(const std::string& key) const {
  const std::string* json = find(key);
  if (!json) return std::nullopt;
  rapidjson::Document document;
  document.Parse<rapidjson::kParseIterativeFlag>(json->data(), json->size());
  if (!document.IsArray()) return std::nullopt;
  std::vector<std::string> values;
  for (const auto& element : document.GetArray()) {
    if (!element.IsString()) return std::nullopt;
    values.emplace_back(element.GetString(), element.GetStringLength());
  }
  return values;
}

void JsonUserDefaults::set(const std::string& key, bool value) { store(key, value ? "true" : "false"); }

void JsonUserDefaults::set(const std::string& key, const std::vector<std::string>& value) {
  std::string json = "[";
  for (const std::string& text : value) {
    if (json.size() > 1) json += ",";
    json += quoted(text);
  }
  store(key, json + "]");
}

void JsonUserDefaults::store(const std::string& key, const std::string& json) {
  const FileState state = load();
  if (state == FileState::damaged) keepAside();

  const auto entry =
      std::find_if(entries_.begin(), entries_.end(), [&](const Entry& each) { return each.key == key; });
  if (entry == entries_.end()) {
    entries_.push_back({key, json});
  } else if (state == FileState::whole && entry->json == json) {
    return;
  } else {
    entry->json = json;
  }

  std::string text = "{";
  for (const Entry& each : entries_) {
    text += (text.size() > 1 ? ",\n  " : "\n  ") + quoted(each.key) + ": " + each.json;
  }
  std::error_code ignored;
  std::filesystem::create_directories(folder_, ignored);
  (void)writeFileAtomically(path_, text + "\n}\n");
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
