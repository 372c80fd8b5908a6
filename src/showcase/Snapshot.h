#pragma once
#include <functional>
#include <string>
#include <system_error>

#include "showcase/memory/MemoryPorts.h"

namespace tarnwick::Snapshot {

/// Renders fourteen scenes of the notch, without a window, into PNG files of 1080 × 345 pixels in that
/// folder, which is made when it is missing. Each file appears whole. Needs an application object of the
/// toolkit.
/// @param plugIn called once, last, to plug the machine's audio devices in: one scene shows them
/// @return the first failure to write, or a default-constructed code
std::error_code run(const std::string& folder, const std::function<void(MemoryAudioDevices&)>& plugIn);

}  // namespace tarnwick::Snapshot
