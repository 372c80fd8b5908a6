#include "ui/Slider.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "ui/Dynamic.h"

namespace tarnwick::ui {
namespace {

View bar(double fraction, bool active) {
  const double height = active ? 10 : 6;
  return GeometryReader([=](Size size) {
    return ZStack(UnitPoint::leading,
        {
            Capsule().fill(white(0.15)),
            Capsule().fill(white()).frame({.width = std::max(height, fraction * size.width)}),
        })
        .frame({.width = size.width, .height = height})
        .animation(spring(0.25, 0.75), active)
        .frame({.height = size.height});
  }).frame({.height = 14});
}

}  // namespace

View Slider(SliderOptions options) {
  if (!options.style) options.style = bar;
  return stateful(false, [o = std::move(options)](State<bool> hovering) {
    return stateful(std::optional<double>(), [=](State<std::optional<double>> dragged) {
      const double range = o.most - o.least;
      const double value = dragged.get().value_or(o.value);
      const double fraction = range > 0 ? std::clamp((value - o.least) / range, 0.0, 1.0) : 0;
      const auto drag = [=](const DragValue& pointer) {
        const double across = pointer.size.width > 0 ? pointer.location.x / pointer.size.width : 0;
        const double wanted = o.least + range * std::clamp(across, 0.0, 1.0);
        dragged.set(wanted);
        if (o.changed) o.changed(wanted);
      };
      const auto end = [=](const DragValue&) {
        const auto last = dragged.get();
        dragged.set(std::nullopt);
        if (last && o.ended) o.ended(*last);
      };
      const auto cancel = [=] {
        dragged.set(std::nullopt);
        if (o.cancelled) o.cancelled();
      };
      const auto set = [=](double wanted) {
        if (o.changed) o.changed(wanted);
        if (o.ended) o.ended(wanted);
      };
      const std::string percent = std::to_string(std::lround(fraction * 100)) + " %";
      return o.style(fraction, hovering || dragged.get())
          .onHover(hovering)
          .onDrag({.changed = drag, .ended = end, .cancelled = cancel})
          .accessibility(Role::slider, o.name)
          .accessibilityValue({.now = value,
              .least = o.least,
              .most = o.most,
              .step = o.step,
              .text = o.text.empty() ? percent : o.text,
              .set = set});
    });
  });
}

}  // namespace tarnwick::ui
