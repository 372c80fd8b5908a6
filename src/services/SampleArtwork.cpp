#include "services/SampleArtwork.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace tarnwick {
namespace {

/// In a cover of 300 points: how far the ring lies inside the edges, and how wide it is.
constexpr double ringInset = 70, ringWidth = 10, ringOpacity = 0.35;

Color mix(const Color& from, const Color& to, double amount) {
  const auto between = [&](double a, double b) { return a + (b - a) * amount; };
  return {between(from.red, to.red), between(from.green, to.green), between(from.blue, to.blue)};
}

uint32_t pixel(const Color& color) {
  const auto byte = [](double value) { return static_cast<uint32_t>(std::lround(value * 255)); };
  return 0xff000000 | byte(color.red) << 16 | byte(color.green) << 8 | byte(color.blue);
}

}  // namespace

Image sampleArtwork(int size, const std::array<Color, 3>& colors, bool withRing, double degrees) {
  const double angle = degrees * std::numbers::pi / 180;
  auto pixels = std::make_shared<std::vector<uint32_t>>();
  pixels->reserve(static_cast<size_t>(size) * static_cast<size_t>(size));
  const double middle = size / 2.0;
  const double reach = middle * (std::cos(angle) + std::sin(angle));
  for (int row = 0; row < size; ++row) {
    for (int column = 0; column < size; ++column) {
      const double x = column + 0.5 - middle, y = middle - row - 0.5;
      const double along = 1 + (x * std::cos(angle) + y * std::sin(angle)) / reach;
      Color color = along < 1 ? mix(colors[0], colors[1], along) : mix(colors[1], colors[2], along - 1);
      if (withRing) {
        const double fromRing = std::abs(std::hypot(x, y) - (middle - ringInset));
        const double coverage = std::clamp(ringWidth / 2 + 0.5 - fromRing, 0.0, 1.0);
        color = mix(color, white(), coverage * ringOpacity);
      }
      pixels->push_back(pixel(color));
    }
  }
  return {size, size, std::move(pixels)};
}

}  // namespace tarnwick
