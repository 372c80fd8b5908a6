#pragma once

namespace tarnwick {

/// A colour in the sRGB space, components 0…1, not premultiplied.
struct Color {
  double red = 0, green = 0, blue = 0, alpha = 1;

  /// The same colour, its alpha multiplied by `factor`.
  constexpr Color opacity(double factor) const { return {red, green, blue, alpha * factor}; }
  friend constexpr bool operator==(const Color&, const Color&) = default;
};

/// A colour of the HSB model, all components 0…1.
Color hsb(double hue, double saturation, double brightness, double alpha = 1);

/// White at the given opacity.
constexpr Color white(double opacity = 1) { return {1, 1, 1, opacity}; }
/// Black at the given opacity.
constexpr Color black(double opacity = 1) { return {0, 0, 0, opacity}; }

/// The named accents, as they look best on black.
namespace colors {
inline constexpr Color clear{0, 0, 0, 0};
inline constexpr Color yellow{1.0, 0.84, 0.04};
inline constexpr Color green{0.19, 0.82, 0.35};
inline constexpr Color red{1.0, 0.27, 0.23};
inline constexpr Color orange{1.0, 0.62, 0.04};
inline constexpr Color blue{0.04, 0.52, 1.0};
inline constexpr Color teal{0.25, 0.78, 0.88};
inline constexpr Color indigo{0.37, 0.36, 0.90};
inline constexpr Color purple{0.75, 0.35, 0.95};
inline constexpr Color pink{1.0, 0.22, 0.37};
}  // namespace colors

}  // namespace tarnwick
