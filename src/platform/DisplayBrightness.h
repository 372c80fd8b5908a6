#pragma once
#include <optional>

namespace tarnwick {

/// The brightness of the built-in display; of the main one where none is built in.
class DisplayBrightness {
 public:
  virtual ~DisplayBrightness() = default;
  /// 0…1; none when it cannot be read. What was set is read back at once.
  virtual std::optional<double> current() const = 0;
  /// 0…1. A value above (below) the present one makes the display brighter (darker), however little. Fails
  /// silently.
  virtual void set(double brightness) = 0;
};

}  // namespace tarnwick
