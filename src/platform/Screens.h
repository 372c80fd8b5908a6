#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "base/Geometry.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// One screen, in global points (y downwards).
struct Screen {
  Rect frame;
  /// The frame less panels and menu bars.
  Rect visibleFrame;
  /// Height of the strip at the top that a camera notch takes away; 0 without one.
  double topSafeAreaInset = 0;
  /// Widths of the strips left and right of a camera notch; none on a screen without one.
  std::optional<double> auxiliaryTopLeftWidth;
  std::optional<double> auxiliaryTopRightWidth;

  friend bool operator==(const Screen&, const Screen&) = default;
};

/// The screens of the desktop.
class Screens {
 public:
  virtual ~Screens() = default;
  /// All screens; the main (primary) one comes first.
  virtual std::vector<Screen> all() const = 0;
  /// Calls `onChange` on the main thread whenever a screen, its frame or its visible frame changed.
  virtual Subscription observe(std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
