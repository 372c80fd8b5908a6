#pragma once
#include <string>

#include "platform/NotificationCenter.h"

namespace tarnwick::OverlayClient {

/// Prints the sessions that the running overlay knows, as one line of JSON. `follow`: and anew whenever they
/// are others, until the overlay ends or nobody reads standard output any more. Where no overlay runs, or it
/// does not answer within five seconds, standard error says so.
/// @param bus a list as of `sessionBusAddress`
/// @return whether there was an answer, and without `follow` whether it could be written
bool printSessions(const std::string& bus, bool follow);

/// Sends an `openNotification` to the running overlay. Where there is none, standard error says so.
/// @return whether there is one, and the bus has taken it
bool open(const std::string& bus, const StringMap& wanted);

}  // namespace tarnwick::OverlayClient
