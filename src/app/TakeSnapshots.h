#pragma once
#include <string>

namespace tarnwick {

/// What the overlay does with `--snapshot FOLDER`. Needs neither a display nor a bus. @return the process's
/// status
int takeSnapshots(const std::string& folder);

}  // namespace tarnwick
