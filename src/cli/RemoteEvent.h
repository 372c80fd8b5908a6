#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "platform/NotificationCenter.h"

namespace tarnwick {

/// The event of a hook as it goes to a listener on another machine: a line that holds one JSON object of
/// strings, with the machine's name and without what has a meaning on that machine only.
std::string remoteLine(const StringMap& event, std::string_view machine);

/// Reads a line, with or without its end, that came from elsewhere: such a one, or a hook's input as Claude
/// Code itself writes it. Nothing but the known texts of an event are taken from it, each of bounded length.
/// The identifier of the session is made one that no session of this machine has, and of no machine of
/// another name.
/// @return an event that has `machineKey`; nothing when the line is no JSON object.
std::optional<StringMap> readRemoteLine(std::string_view line);

}  // namespace tarnwick
