#include <cstdint>

#include "Check.h"
#include "base/Characters.h"
#include "base/Utf8.h"
#include "cli/HookEvent.h"
#include "dbus/BusMessage.h"
#include "json/JsonValue.h"
#include "platform/PermissionRequests.h"

using namespace tarnwick;

/// The first byte is the size of the pieces in which the rest arrives.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  const auto inPieces = [text](size_t length) {
    return [rest = text, length]() mutable {
      const std::string_view piece = rest.substr(0, length);
      rest.remove_prefix(piece.size());
      return piece;
    };
  };
  const auto event = readHookEvent(inPieces(65536));
  check(event == readHookEvent(inPieces(1 + data[0])), "the event does not depend on how the input arrives");
  if (!event) return 0;

  const auto json = parseJson(text);
  check(json && json->as<JsonObject>(), "an event is a JSON object");
  check(event->size() <= 8, "an event has no other keys");
  for (const auto& [key, value] : *event) {
    check(value.size() <= 16384 && isValidUtf8(value), "every text of an event is short and valid");
    check(value.empty() || !firstCharacters(value, 1, 16384).empty(), "a cut keeps the first character");
    check(firstCharacters(value, key == "tool_detail" ? 120 : 200, 16384) == value,
        "a cut text is not cut again");
  }
  auto asked = readHookEvent(inPieces(65536), HookEventForm::withInput);
  check(asked == readHookEvent(inPieces(1 + data[0]), HookEventForm::withInput), "nor does a tool's input");
  if (const auto input = asked->extract(toolInputKey); !input.empty()) {
    const auto copy = parseJson(input.mapped());
    check(copy && copy->as<JsonObject>() && isValidUtf8(input.mapped()), "a tool's input is a JSON object");
    check(
        copy->as<JsonObject>()->size() == memberOf<JsonObject>(*json->as<JsonObject>(), toolInputKey)->size(),
        "and a whole one");
  }
  check(asked == event, "it adds nothing else");
  check(isValidUtf8(withoutInvalidUtf8(text)), "a cleaned text is valid");
  BusMessage::signal(1, "/dev/tarnwick", "dev.tarnwick", "event", *event);
  return 0;
}
