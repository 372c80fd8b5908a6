#include "views/HUDAppearance.h"

#include <algorithm>

namespace tarnwick {

std::string hudSymbol(HUDKind kind, double level) {
  if (kind == HUDKind::mute) return "speaker.slash.fill";
  if (kind == HUDKind::brightness) return level < 0.5 ? "sun.min.fill" : "sun.max.fill";
  if (level == 0) return "speaker.fill";
  if (level < 0.34) return "speaker.wave.1.fill";
  return level < 0.67 ? "speaker.wave.2.fill" : "speaker.wave.3.fill";
}

Color hudTint(HUDKind kind, double level) {
  if (kind == HUDKind::brightness) return white();
  const double x = std::clamp(level, 0.0, 1.0);
  const double hue = x < 0.65 ? 0.33 - 0.25 * x / 0.65 : 0.08 - 0.08 * (x - 0.65) / 0.35;
  return hsb(hue, 0.85, 0.95);
}

}  // namespace tarnwick
