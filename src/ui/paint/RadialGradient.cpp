#include "ui/paint/RadialGradient.h"

#include <QImage>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace tarnwick::ui {
namespace {

/// A premultiplied colour, in 1/256 of the levels of a pixel.
struct Fine {
  uint16_t alpha, red, green, blue;
};

constexpr int steps = 1024;
using Ramp = std::array<Fine, steps + 1>;

Ramp rampOf(const std::vector<std::pair<double, QColor>>& stops) {
  Ramp ramp;
  for (int i = 0; i <= steps; ++i) {
    const double place = double(i) / steps;
    const auto after = std::ranges::find_if(stops, [&](const auto& stop) { return stop.first > place; });
    const auto& [to, second] = after == stops.end() ? stops.back() : *after;
    const auto& [from, first] = after == stops.begin() ? *after : *(after - 1);
    const double progress = to > from ? std::clamp((place - from) / (to - from), 0.0, 1.0) : 1;
    const auto mixed = [&](double a, double b) { return a + (b - a) * progress; };
    const auto fine = [](double value) { return uint16_t(std::lround(255 * 256 * value)); };
    const double a = first.alphaF(), b = second.alphaF();
    ramp[size_t(i)] = {fine(mixed(a, b)), fine(mixed(first.redF() * a, second.redF() * b)),
        fine(mixed(first.greenF() * a, second.greenF() * b)),
        fine(mixed(first.blueF() * a, second.blueF() * b))};
  }
  return ramp;
}

/// What is added before levels are rounded down, in 1/256 of one: each of 64 thresholds once in a square of
/// eight by eight pixels, neighbours as different as they can be.
struct Thresholds {
  std::array<std::array<uint16_t, 8>, 8> at{};
  constexpr Thresholds() {
    for (unsigned y = 0; y < 8; ++y) {
      for (unsigned x = 0; x < 8; ++x) {
        unsigned value = 0;
        for (unsigned bit = 0; bit < 3; ++bit) {
          value = value << 2 | ((x ^ y) >> bit & 1) << 1 | (y >> bit & 1);
        }
        at[y][x] = uint16_t(value * 4 + 2);
      }
    }
  }
};
constexpr Thresholds thresholds;

}  // namespace

QBrush RadialGradient::brush(const QTransform& toPixels, const QRect& area) const {
  const Ramp ramp = rampOf(stops);
  const QTransform toPoints = toPixels.inverted();
  QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
  const float scale = float(steps / std::max(radius, 1e-6));
  const float stepX = float(toPoints.m11()) * scale, stepY = float(toPoints.m12()) * scale;
  for (int y = 0; y < area.height(); ++y) {
    const QPointF start = toPoints.map(QPointF(area.left() + 0.5, area.top() + y + 0.5)) - center;
    float u = float(start.x()) * scale, v = float(start.y()) * scale;
    const auto& row = thresholds.at[size_t(area.top() + y) % 8];
    auto* line = reinterpret_cast<uint32_t*>(image.scanLine(y));
    for (int x = 0; x < area.width(); ++x, u += stepX, v += stepY) {
      const Fine& c = ramp[size_t(std::min(std::sqrt(u * u + v * v), float(steps)))];
      const uint32_t more = row[size_t(area.left() + x) % 8];
      line[x] = (c.alpha + more) >> 8 << 24 | (c.red + more) >> 8 << 16 | (c.green + more) >> 8 << 8 |
                (c.blue + more) >> 8;
    }
  }
  QBrush brush(image);
  brush.setTransform(QTransform::fromTranslate(area.left(), area.top()) * toPoints);
  return brush;
}

}  // namespace tarnwick::ui
