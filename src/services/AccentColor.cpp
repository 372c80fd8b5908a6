#include "services/AccentColor.h"

#include <algorithm>
#include <cmath>

namespace tarnwick {
namespace {

double hueOf(double red, double green, double blue) {
  const double highest = std::max({red, green, blue});
  const double range = highest - std::min({red, green, blue});
  if (range == 0) return 0;
  double sixths = 0;
  if (highest == red) {
    sixths = (green - blue) / range;
  } else if (highest == green) {
    sixths = (blue - red) / range + 2;
  } else {
    sixths = (red - green) / range + 4;
  }
  return (sixths < 0 ? sixths + 6 : sixths) / 6;
}

}  // namespace

Color accentOf(const Image& image) {
  if (!image.pixels || image.pixels->empty()) return white();
  uint64_t red = 0, green = 0, blue = 0;
  for (const uint32_t pixel : *image.pixels) {
    red += pixel >> 16 & 0xff;
    green += pixel >> 8 & 0xff;
    blue += pixel & 0xff;
  }
  // In whole steps of a byte, as a single pixel of the average colour would have it.
  const auto average = [&](uint64_t sum) {
    return std::round(static_cast<double>(sum) / static_cast<double>(image.pixels->size())) / 255;
  };
  const double r = average(red), g = average(green), b = average(blue);
  const double highest = std::max({r, g, b});
  const double saturation = highest > 0 ? (highest - std::min({r, g, b})) / highest : 0;
  return hsb(hueOf(r, g, b), std::min(saturation * 1.2, 0.85), 0.95);
}

}  // namespace tarnwick
