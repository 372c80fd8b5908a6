#include "services/MediaLine.h"

#include <rapidjson/document.h>

#include "services/Base64.h"

namespace tarnwick {
namespace {

using Value = rapidjson::Value;

const Value* find(const Value& object, const char* key) {
  const auto member = object.FindMember(key);
  return member == object.MemberEnd() ? nullptr : &member->value;
}

std::string text(const Value& object, const char* key) {
  const Value* value = find(object, key);
  return value && value->IsString() ? std::string(value->GetString(), value->GetStringLength()) : "";
}

std::optional<double> number(const Value& object, const char* key) {
  const Value* value = find(object, key);
  return value && value->IsNumber() ? std::optional(value->GetDouble()) : std::nullopt;
}

std::optional<int64_t> integer(const Value& object, const char* key) {
  const Value* value = find(object, key);
  return value && value->IsInt64() ? std::optional(value->GetInt64()) : std::nullopt;
}

}  // namespace

std::optional<MediaLine> MediaLine::parse(std::string line) {
  // In place: a cover has millions of characters. Without recursion: the depth is the bridge's choice.
  constexpr unsigned flags =
      rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
  rapidjson::Document object;
  object.ParseInsitu<flags>(line.data());
  if (object.HasParseError() || !object.IsObject()) return std::nullopt;

  MediaLine parsed;
  parsed.title = text(object, "title");
  parsed.artist = text(object, "artist");
  parsed.album = text(object, "album");
  parsed.duration = number(object, "duration").value_or(0);
  parsed.elapsed = number(object, "elapsed").value_or(0);
  parsed.timestamp = number(object, "timestamp");
  const Value* playing = find(object, "playing");
  parsed.playing = playing && playing->IsBool() && playing->GetBool();
  parsed.artworkId = integer(object, "artworkId").value_or(0);
  if (const Value* artwork = find(object, "artwork"); artwork && artwork->IsString()) {
    parsed.artwork = decodeBase64({artwork->GetString(), artwork->GetStringLength()});
  }
  const int64_t pid = integer(object, "pid").value_or(0);
  if (pid >= 1 && pid <= INT32_MAX) parsed.pid = static_cast<int32_t>(pid);
  parsed.desktopEntry = text(object, "desktopEntry");
  return parsed;
}

}  // namespace tarnwick
