#pragma once
#include <string>

#include "base/FilePath.h"

namespace tarnwick::ListenCLI {

/// Passes the events that come to a socket on to the session's bus, until the process is told to end. Prints
/// what is wrong.
/// @param bus as of `sessionBusAddress`
/// @return false when it cannot listen there
bool run(const FilePath& socket, const std::string& bus);

}  // namespace tarnwick::ListenCLI
