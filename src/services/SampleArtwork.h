#pragma once
#include <array>

#include "base/Color.h"
#include "base/Image.h"

namespace tarnwick {

/// A cover for the demonstration: a gradient of three colours rising at 35°, on request with a ring in it.
Image sampleArtwork(int size, const std::array<Color, 3>& colors, bool withRing);

}  // namespace tarnwick
