#pragma once
#include <array>

#include "base/Color.h"
#include "base/Image.h"

namespace tarnwick {

/// A picture for the demonstration: a gradient of three colours rising at that angle, on request with a ring
/// in it.
Image sampleArtwork(int size, const std::array<Color, 3>& colors, bool withRing, double degrees = 35);

}  // namespace tarnwick
