#pragma once
#include "base/Color.h"
#include "base/Image.h"

namespace tarnwick {

/// A bright tint that goes with a picture: the hue of its average. White for a picture without pixels.
Color accentOf(const Image& image);

}  // namespace tarnwick
