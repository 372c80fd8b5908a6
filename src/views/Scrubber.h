#pragma once
#include <string>

#include "services/MediaService.h"
#include "ui/View.h"

namespace tarnwick {

/// Where the track is, and a bar to go elsewhere in it.
ui::View scrubber(MediaService& media);

/// "3:07", or "75:03": minutes and whole seconds. What is no number is "0:00".
std::string trackTime(double seconds);

}  // namespace tarnwick
