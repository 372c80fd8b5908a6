#include "views/LevelBar.h"

#include <algorithm>

namespace tarnwick {

using namespace ui;

View levelBar(double value, Color tint) {
  return GeometryReader([=](Size size) {
    const double filled = std::clamp(value, 0.0, 1.0) * size.width;
    return ZStack(UnitPoint::leading,
        {
            Capsule().fill(white(0.18)),
            Capsule()
                .fill(tint)
                .shadow(tint.opacity(0.6), 4)
                .animation(easeOut(0.25), tint)
                .frame({.width = filled, .height = size.height}),
        })
        .animation(spring(0.25, 0.8), value);
  });
}

}  // namespace tarnwick
