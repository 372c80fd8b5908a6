#pragma once

namespace tarnwick::ui {

enum class Weight { regular = 400, medium = 500, semibold = 600, bold = 700, black = 900 };
enum class Design { standard, rounded, monospaced };

/// A font by its size in points (pixels at ratio 1).
struct Font {
  double size = 13;
  Weight weight = Weight::regular;
  Design design = Design::standard;
  friend constexpr bool operator==(const Font&, const Font&) = default;
};

}  // namespace tarnwick::ui
