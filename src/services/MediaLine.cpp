#include "services/MediaLine.h"

#include "json/JsonValue.h"
#include "services/Base64.h"

namespace tarnwick {

std::optional<MediaLine> MediaLine::parse(std::string_view line) {
  const auto json = parseJson(line);
  const auto* object = json ? json->as<JsonObject>() : nullptr;
  if (!object) return std::nullopt;
  const auto text = [&](std::string_view key) {
    const auto* value = memberOf<std::string>(*object, key);
    return value ? *value : std::string();
  };
  const auto real = [&](std::string_view key) {
    const auto* value = memberOf<JsonNumber>(*object, key);
    return value ? value->real() : std::nullopt;
  };
  const auto integer = [&](std::string_view key) {
    const auto* value = memberOf<JsonNumber>(*object, key);
    return value ? value->integer().value_or(0) : 0;
  };
  const auto boolean = [&](std::string_view key) {
    const auto* value = memberOf<bool>(*object, key);
    return value && *value;
  };

  MediaLine parsed;
  parsed.title = text("title");
  parsed.artist = text("artist");
  parsed.album = text("album");
  parsed.duration = real("duration").value_or(0);
  parsed.elapsed = real("elapsed").value_or(0);
  parsed.timestamp = real("timestamp");
  parsed.playing = boolean("playing");
  parsed.rate = real("rate").value_or(1);
  parsed.artworkId = integer("artworkId");
  if (const auto* artwork = memberOf<std::string>(*object, "artwork"))
    parsed.artwork = decodeBase64(*artwork);
  const int64_t pid = integer("pid");
  if (pid >= 1 && pid <= INT32_MAX) parsed.pid = static_cast<int32_t>(pid);
  parsed.desktopEntry = text("desktopEntry");
  parsed.canRaise = boolean("canRaise");
  const auto* canSeek = memberOf<bool>(*object, "canSeek");
  parsed.canSeek = !canSeek || *canSeek;
  return parsed;
}

}  // namespace tarnwick
