#include "views/Scrubber.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

#include "base/L10n.h"
#include "ui/Dynamic.h"
#include "ui/Slider.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr double redrawInterval = 0.5;
constexpr double keySeconds = 5;
constexpr double barHeight = 14, knobSize = 12;

SliderStyle barStyle(Color accent) {
  return [accent](double fraction, bool active) {
    const double height = active ? 8 : 4;
    return GeometryReader([=](Size size) {
      const double filled = fraction * size.width;
      return ZStack(UnitPoint::leading,
          {
              Capsule().fill(white(0.16)).frame({.height = height}),
              Capsule()
                  .fill(gradientOf(accent))
                  .shadow(accent.opacity(active ? 0.5 : 0), active ? 6 : 0)
                  .frame({.width = filled, .height = height}),
              Circle()
                  .fill(white())
                  .shadow(black(0.33), 2)
                  .frame({.width = knobSize, .height = knobSize})
                  .scaleEffect(active ? 1 : 0.01)
                  .offset({filled - knobSize / 2, 0}),
          })
          .frame({.width = size.width, .height = size.height})
          .animation(spring(0.28, 0.7), active);
    }).frame({.height = barHeight});
  };
}

View time(const std::string& text, bool hovering) {
  return Text(text).font({10, Weight::medium}).monospacedDigits().foreground(white(hovering ? 0.7 : 0.45));
}

double finite(double seconds) { return std::isfinite(seconds) ? seconds : 0; }

View bar(MediaService& media, double elapsed, double length, State<bool> hovering,
    State<std::optional<double>> scrub) {
  const auto seek = [&media, scrub](double seconds) {
    scrub.set(std::nullopt);
    media.seek(seconds);
  };
  return Slider(
      {.name = tr("Position", "Position"),
          .value = elapsed,
          .most = std::max(length, 1.0),
          .step = keySeconds,
          .text = trackTime(elapsed),
          .style = barStyle(media.accent),
          .changed = [scrub](double seconds) { scrub.set(seconds); },
          .ended = seek,
          .cancelled = [scrub] { scrub.set(std::nullopt); }})
      .onHover(hovering)
      // Within what has no end there is nowhere to go.
      .allowsHitTesting(length > 0 && media.canSeek);
}

/// When the seconds change.
std::optional<Beat> beat(const MediaService& media) {
  if (!media.playing) return std::nullopt;
  return Beat{redrawInterval, *media.timestamp - std::fmod(finite(media.elapsed), 1)};
}

}  // namespace

std::string trackTime(double seconds) {
  // More than that is no track.
  constexpr double most = 1e9;
  const auto whole = static_cast<long>(std::clamp(finite(seconds), 0.0, most));
  char text[24];
  std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
  return text;
}

View scrubber(MediaService& media) {
  return stateful(false, [&media](State<bool> hovering) {
    return stateful(std::optional<double>(), [&media, hovering](State<std::optional<double>> scrub) {
      const auto body = [&media, hovering, scrub](const auto&, Date now) {
        const double length = std::max(0.0, finite(media.duration));
        const double elapsed = scrub.get().value_or(finite(media.currentElapsed(now)));
        const View times = HStack({},
            {time(trackTime(elapsed), hovering), Spacer(),
                time("-" + trackTime(length - elapsed), hovering)});
        return VStack({.spacing = 4},
            {bar(media, elapsed, length, hovering, scrub),
                times.animation(spring(0.28, 0.7), hovering.get())});
      };
      return dynamic({.body = body, .beat = beat(media)});
    });
  });
}

}  // namespace tarnwick
