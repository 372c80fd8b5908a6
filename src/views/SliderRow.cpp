#include "views/SliderRow.h"

#include <algorithm>
#include <cmath>

#include "ui/Button.h"
#include "ui/Slider.h"
#include "views/ButtonStyles.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Animation valueChange = spring(0.2, 0.85);
/// The buttons are larger. Three rows and the menu below them fill the page.
constexpr double rowHeight = 23;

SliderStyle trackStyle(Color tint) {
  return [tint](double value, bool active) {
    const double height = active ? 10 : 6;
    return GeometryReader([=](Size size) {
      return ZStack(UnitPoint::leading,
          {
              Capsule().fill(white(0.15)).frame({.height = height}),
              Capsule()
                  .fill(gradientOf(tint))
                  .shadow(tint.opacity(active ? 0.5 : 0), 5)
                  .frame({.width = std::max(height, size.width * value), .height = height}),
          })
          .frame({.width = size.width, .height = size.height})
          .animation(valueChange, value)
          .animation(spring(0.25, 0.75), active);
    })
        // Easy to hit.
        .frame({.height = rowHeight});
  };
}

View icon(const SliderRowOptions& options) {
  const View symbol =
      Symbol(options.icon)
          .font({12, Weight::semibold})
          .contentTransition(ContentTransition::replace)
          .frame({.width = 18});
  const ButtonStyle style = notchButtonStyle(26, 1.08);
  if (!options.onIcon) return style(symbol, false, false).tooltip(options.iconHelp);
  return Button({.name = options.iconHelp, .label = symbol, .style = style, .action = options.onIcon})
      .tooltip(options.iconHelp);
}

}  // namespace

View sliderRow(SliderRowOptions options) {
  return HStack({.spacing = 8},
      {
          icon(options),
          Slider({.name = options.name,
              .value = options.value,
              .step = options.step,
              .style = trackStyle(options.tint),
              .changed = options.onChange}),
          RollingNumber(std::to_string(std::lround(options.value * 100)), valueChange)
              .font({10, Weight::semibold, Design::rounded})
              .foreground(white(0.5))
              .frame({.width = 22, .align = UnitPoint::trailing}),
      })
      .frame({.height = rowHeight})
      .opacity(options.enabled ? 1 : 0.4)
      .allowsHitTesting(options.enabled);
}

}  // namespace tarnwick
