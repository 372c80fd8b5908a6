#include "views/EqualizerBars.h"

#include <cmath>

#include "ui/Dynamic.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr double redrawInterval = 1.0 / 24;
constexpr double pausedLevel = 0.18;
constexpr double changeSeconds = 0.3;

/// Since when the bars play or rest.
struct Tempo {
  bool playing = false;
  Date since = Date::distantPast();
  friend bool operator==(const Tempo&, const Tempo&) = default;
};

}  // namespace

double equalizerLevel(int bar, double seconds) {
  const double p = seconds * (1.7 * bar + 5) + 1.3 * bar;
  return std::abs(std::sin(p) * std::cos(0.37 * p)) * 0.72 + 0.28;
}

View equalizerBars(Color color, bool playing, int count) {
  return stateful(Tempo{}, [=](State<Tempo> tempo) {
    return timeline(redrawInterval, !playing, [=](Date now) {
      if (tempo.get().playing != playing) tempo.set({playing, now});
      // The bars are redrawn while they rise, so that their swing grows along the curve by itself.
      const double risen =
          Motion{.from = 0,
              .to = 1,
              .start = tempo.get().since.secondsSince1970,
              .animation = easeInOut(changeSeconds)}
              .at(now.secondsSince1970)
              .value;
      Views bars;
      for (int bar = 0; bar < count; ++bar) {
        const double swing = equalizerLevel(bar, now.secondsSince1970) - pausedLevel;
        const double level = pausedLevel + (playing ? swing * risen : 0);
        bars.push_back(Capsule().fill(gradientOf(color)).frame({.width = 3}).scaleEffect(1, level));
      }
      return HStack({.spacing = 2}, bars).animation(easeInOut(changeSeconds), playing);
    });
  });
}

}  // namespace tarnwick
