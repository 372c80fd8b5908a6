#pragma once
#include <optional>

#include "cli/ByteStream.h"
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Reads one hook event, a JSON object, and reduces it to the map that the overlay is told: the event's seven
/// known texts, cut to 200 characters, and `tool_detail`, cut to 120, from the tool's input.
/// Reads the input to its end whatever is in it. @return nothing when the input is no JSON object.
std::optional<StringMap> readHookEvent(ByteSource input);

}  // namespace tarnwick
