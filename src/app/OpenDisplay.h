#pragma once
#include <memory>

#include "linux/display/DisplayServer.h"

namespace tarnwick {

/// The way to the session's display server. None, which standard error is told, when there is none that this
/// program can use.
std::unique_ptr<DisplayConnection> openDisplay();

}  // namespace tarnwick
