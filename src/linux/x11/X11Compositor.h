#pragma once
#include "base/ObservableObject.h"
#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// Whether a compositor blends windows, without which a transparent window is a black one.
class X11Compositor {
 public:
  explicit X11Compositor(X11Connection& connection);

  bool isRunning() const { return isRunning_; }
  /// Calls `onChange` when a compositor came or went.
  Subscription observe(std::function<void()> onChange) { return changes_.observe(std::move(onChange)); }

 private:
  bool isRunning_ = false;
  ObservableObject changes_;
  Subscription events_;
};

}  // namespace tarnwick
