#pragma once
#include <ctime>
#include <string>
#include <vector>

#include "base/FilePath.h"

namespace tarnwick {

/// Where the desktop keeps pictures of what is in a file, by the freedesktop thumbnail specification: those
/// that are there.
std::vector<std::string> thumbnailsOf(const FilePath& file);

/// Whether a thumbnail is of the file as it was last written, in seconds of the wall clock.
bool isThumbnailOf(const std::string& thumbnail, std::time_t modified);

}  // namespace tarnwick
