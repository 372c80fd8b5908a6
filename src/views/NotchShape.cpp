#include "views/NotchShape.h"

#include <algorithm>

namespace tarnwick {
namespace {

ui::Path outline(Size size, const std::vector<double>& animated, const std::vector<double>& fixed) {
  const double w = size.width, h = size.height, f = fixed[0];
  const double r = std::max(0.0, std::min({animated[0], (w - 2 * f) / 2, h - f}));
  ui::Path path;
  path.moveTo({0, 0});
  path.quadTo({f, 0}, {f, f});
  path.lineTo({f, h - r});
  path.quadTo({f, h}, {f + r, h});
  path.lineTo({w - f - r, h});
  path.quadTo({w - f, h}, {w - f, h - r});
  path.lineTo({w - f, f});
  path.quadTo({w - f, 0}, {w, 0});
  path.close();
  return path;
}

}  // namespace

double notchBottomRadius(Presentation presentation, bool hovering) {
  if (presentation == Presentation::expanded) return 26;
  if (presentation == Presentation::banner) return 22;
  return hovering ? 13 : 10;
}

ui::Shape NotchShape(double flare, double bottomRadius) {
  return {.outline = outline,
      .animated = {bottomRadius},
      .fixed = {flare},
      .extent = [](const auto& animated, const auto& fixed) { return fixed[0] + animated[0]; }};
}

}  // namespace tarnwick
