#include "base/Color.h"

#include <algorithm>
#include <cmath>

namespace tarnwick {

Color hsb(double hue, double saturation, double brightness, double alpha) {
  // Each channel is the same trapezoid over the hue circle, shifted by a third of it.
  const auto channel = [&](double shift) {
    const double k = std::fmod(shift + hue * 6, 6);
    return brightness - brightness * saturation * std::clamp(std::min(k, 4 - k), 0.0, 1.0);
  };
  return {channel(5), channel(3), channel(1), alpha};
}

}  // namespace tarnwick
