#pragma once
#include <functional>
#include <optional>
#include <string_view>

#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Yields the next bytes of an input, at least one; none at its end. They stay valid until the next call.
using ByteSource = std::function<std::string_view()>;

/// What an event may be given as.
enum class HookEventForm {
  /// As Claude Code gives it to a hook.
  whole,
  /// The same; and of a permission that can be given in the notch the map has, under `toolInputKey`, what the
  /// tool would be called with, as JSON, unless that is too long.
  withInput,
  /// That, or what a relay has made of it: the map itself, with the key `machine`.
  reduced
};

/// Reads one hook event, a JSON object, and reduces it to the map that the overlay is told: the event's known
/// texts, cut to 200 characters, `transcript_path`, `tool_detail`, cut to 120, from the tool's input, and
/// `question`, cut to 200, the first one that the tool asks. Reads the input to its end whatever is in it.
/// @return nothing when the input is no JSON object.
std::optional<StringMap> readHookEvent(const ByteSource& input, HookEventForm form = HookEventForm::whole);

}  // namespace tarnwick
