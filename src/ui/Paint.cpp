#include "ui/Paint.h"

#include <algorithm>

namespace tarnwick::ui {
namespace {

std::vector<Paint::Stop> evenly(const std::vector<Color>& colors) {
  std::vector<Paint::Stop> stops;
  for (size_t i = 0; i < colors.size(); ++i) {
    stops.push_back({colors.size() > 1 ? double(i) / double(colors.size() - 1) : 0, colors[i]});
  }
  return stops;
}

}  // namespace

Paint gradientOf(Color color) {
  const auto lighter = [](double channel) { return std::min(1.0, channel + (1 - channel) * 0.18); };
  const Color top{lighter(color.red), lighter(color.green), lighter(color.blue), color.alpha};
  return linearGradient({top, color}, UnitPoint::top, UnitPoint::bottom);
}

Paint linearGradient(std::vector<Color> colors, UnitPoint start, UnitPoint end) {
  Paint paint(Paint::Kind::linear, evenly(colors));
  paint.start = start;
  paint.end = end;
  return paint;
}

Paint radialGradient(std::vector<Color> colors, UnitPoint center, double radius) {
  Paint paint(Paint::Kind::radial, evenly(colors));
  paint.start = center;
  paint.radius = radius;
  return paint;
}

}  // namespace tarnwick::ui
