#include "cli/HookEvent.h"

#include <rapidjson/reader.h>

#include <algorithm>
#include <array>

#include "cli/JsonFilter.h"
#include "cli/Text.h"

namespace tarnwick {
namespace {

constexpr std::array<std::string_view, 7> copiedKeys{
    "hook_event_name", "session_id", "cwd", "tool_name", "message", "notification_type", "prompt"};
constexpr std::array<std::string_view, 6> detailKeys{"command",     "file_path", "pattern",
                                                     "description", "url",       "query"};
constexpr size_t textLimit = 200;
constexpr size_t detailLimit = 120;
// Far above what any real text of that many characters takes.
constexpr size_t byteLimit = 16384;

/// Listens to the JSON reader and keeps what goes into the map. Of a key given twice the last value counts.
class EventHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, EventHandler> {
 public:
  StringMap takeMap() {
    for (auto& detail : details_) {
      if (!detail) continue;
      map_["tool_detail"] = std::move(*detail);
      break;
    }
    return std::move(map_);
  }

  bool String(const char* data, rapidjson::SizeType length, bool) {
    const std::string_view text(data, length);
    if (depth_ == 0) return false;
    forgetValue();
    if (isCopiedKey()) map_[std::string(key_)] = firstCharacters(text, textLimit, byteLimit);
    if (isDetailKey()) details_[detailIndex()] = firstCharacters(text, detailLimit, byteLimit);
    return true;
  }

  bool StartObject() {
    if (depth_ > 0) forgetValue();
    isToolInput_ = isToolInput_ || (depth_ == 1 && key_ == "tool_input");
    ++depth_;
    return true;
  }

  bool Key(const char* data, rapidjson::SizeType length, bool) {
    const std::string_view text(data, length);
    if (depth_ == 1) key_ = knownKey(text);
    if (depth_ == 2 && isToolInput_) detailKey_ = std::ranges::find(detailKeys, text);
    return true;
  }

  bool EndObject(rapidjson::SizeType) {
    close();
    return true;
  }

  bool StartArray() {
    if (depth_ == 0) return false;
    forgetValue();
    ++depth_;
    return true;
  }

  bool EndArray(rapidjson::SizeType) {
    close();
    return true;
  }

  /// Every other value.
  bool Default() {
    if (depth_ == 0) return false;
    forgetValue();
    return true;
  }

 private:
  static std::string_view knownKey(std::string_view text) {
    if (text == "tool_input") return "tool_input";
    const auto found = std::ranges::find(copiedKeys, text);
    return found == copiedKeys.end() ? std::string_view() : *found;
  }

  bool isCopiedKey() const { return depth_ == 1 && !key_.empty() && key_ != "tool_input"; }
  bool isDetailKey() const { return depth_ == 2 && isToolInput_ && detailKey_ != detailKeys.end(); }
  size_t detailIndex() const { return static_cast<size_t>(detailKey_ - detailKeys.begin()); }

  void forgetValue() {
    if (isCopiedKey()) map_.erase(std::string(key_));
    if (depth_ == 1 && key_ == "tool_input") details_ = {};
    if (isDetailKey()) details_[detailIndex()].reset();
  }

  void close() {
    --depth_;
    if (depth_ == 1) isToolInput_ = false;
  }

  StringMap map_;
  std::array<std::optional<std::string>, detailKeys.size()> details_;
  size_t depth_ = 0;
  /// The top-level key whose value is being read, when it is one of those above.
  std::string_view key_;
  decltype(detailKeys)::const_iterator detailKey_ = detailKeys.end();
  /// Whether the object at depth 2 is the tool's input.
  bool isToolInput_ = false;
};

}  // namespace

std::optional<StringMap> readHookEvent(ByteSource input) {
  ByteStream stream(JsonFilter(std::move(input)));
  EventHandler handler;
  rapidjson::Reader reader;
  constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
  const bool isObject = !reader.Parse<flags>(stream, handler).IsError() && stream.isAtEnd();
  stream.drain();
  if (!isObject) return std::nullopt;
  return handler.takeMap();
}

}  // namespace tarnwick
