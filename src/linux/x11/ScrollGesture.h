#pragma once
#include <functional>

#include "base/Scheduler.h"
#include "core/NotchPanel.h"

namespace tarnwick {

/// Gives phases to smooth scrolling, which has none on X11: the first step after a pause begins a gesture,
/// and the next pause ends it.
class ScrollGesture {
 public:
  /// Seconds without a step after which the fingers are taken to have left.
  static constexpr double pause = 0.2;

  ScrollGesture(Scheduler& scheduler, std::function<bool(const ScrollEvent&)> receive);

  /// Passes a step on with its phase. @return what the receiver answers.
  bool step(ScrollEvent event);

 private:
  void end();
  void waitForPause(double seconds);

  Scheduler& scheduler_;
  std::function<bool(const ScrollEvent&)> receive_;
  bool running_ = false;
  bool inverted_ = false;
  double lastStep_ = 0;
  Task ending_;
};

}  // namespace tarnwick
