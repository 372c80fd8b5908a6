#include "views/BatteryLabel.h"

#include <algorithm>

namespace tarnwick {

using namespace ui;

namespace {

View batteryGlyph(int level, bool charging) {
  const double filled = std::clamp(level * 18 / 100.0, 2.0, 18.0);
  const Color color = charging ? colors::green : batteryColor(level);
  View bolt;
  if (charging) {
    bolt = Symbol("bolt.fill")
               .font({7, Weight::black})
               .foreground(white())
               .frame({.width = 22})
               .transition(Transition::opacity());
  }
  const View outline =
      RoundedRectangle(3).stroke(white(0.45), {.width = 1}).frame({.width = 22, .height = 11});
  const View fill =
      RoundedRectangle(1.5).fill(color).frame({.width = filled, .height = 7}).padding(Edge::leading, 2);
  return outline.overlay(fill, UnitPoint::leading).overlay(bolt);
}

}  // namespace

Color batteryColor(int level) { return level > 20 ? colors::green : colors::red; }

View batteryLabel(int level, bool charging) {
  return HStack({.spacing = 4},
      {
          Text(std::to_string(level) + " %")
              .font({11, Weight::semibold})
              .monospacedDigits()
              .contentTransition(ContentTransition::numericText),
          batteryGlyph(level, charging),
      })
      .animation(easeInOut(0.35), level);
}

}  // namespace tarnwick
