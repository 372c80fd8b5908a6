#pragma once
#include <ctime>
#include <optional>
#include <string>

#include "base/FilePath.h"

namespace tarnwick {

/// The picture that the desktop keeps of what is in a file, by the freedesktop thumbnail specification; none
/// where there is none or it is of an older state of the file.
/// @param modified when the file was last written, in seconds of the wall clock
std::optional<std::string> thumbnailOf(const FilePath& file, std::time_t modified);

}  // namespace tarnwick
