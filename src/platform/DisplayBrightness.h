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
  /// 0…1; the display takes the nearest that it can. Fails silently.
  virtual void set(double brightness) = 0;
  /// The least difference that the display can make; 0 while it is not known.
  virtual double unit() const = 0;
  /// Calls `onChange` on the main thread when a brightness to be changed has come or gone.
  virtual Subscription observe(std::function<void()> onChange) = 0;
  /// Calls `onChange` on the main thread when the brightness may have been changed, by whomever, as long as
  /// the subscription is kept. Without one nobody watches the display that there is now.
  virtual Subscription follow(std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
