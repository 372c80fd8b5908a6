#pragma once
#include <functional>
#include <optional>

#include "base/ObservableObject.h"

namespace tarnwick {

/// The brightness of the built-in display; of the main one where none is built in.
class DisplayBrightness {
 public:
  virtual ~DisplayBrightness() = default;
  /// 0…1; none when it cannot be read, or cannot be changed. What was set is read back at once.
  virtual std::optional<double> current() = 0;
  /// 0…1. A value above (below) the present one makes the display brighter (darker), however little. Fails
  /// silently.
  virtual void set(double brightness) = 0;
  /// Calls `onChange` on the main thread when a brightness to be changed has come or gone.
  virtual Subscription observe(std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
