#include "views/EqualizerBars.h"

#include <cmath>

#include "ui/Dynamic.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr double redrawInterval = 1.0 / 24;
constexpr double pausedLevel = 0.18;

}  // namespace

double equalizerLevel(int bar, double seconds) {
  const double p = seconds * (1.7 * bar + 5) + 1.3 * bar;
  return std::abs(std::sin(p) * std::cos(0.37 * p)) * 0.72 + 0.28;
}

View equalizerBars(Color color, bool playing, int count) {
  return timeline(redrawInterval, !playing, [=](Date now) {
    Views bars;
    for (int bar = 0; bar < count; ++bar) {
      const double level = playing ? equalizerLevel(bar, now.secondsSince1970) : pausedLevel;
      bars.push_back(Capsule().fill(gradientOf(color)).frame({.width = 3}).scaleEffect(1, level));
    }
    return HStack({.spacing = 2}, bars).animation(easeInOut(0.3), playing);
  });
}

}  // namespace tarnwick
