#pragma once
#include <algorithm>
#include <utility>

#include "base/Scheduler.h"

namespace tarnwick {

/// Tries again what has failed: soon at first and then less and less often, so that waiting for what may
/// never come costs nothing.
class Backoff {
 public:
  /// @param first seconds before the second attempt; each later pause is twice as long, up to sixteen times
  /// the first
  explicit Backoff(Scheduler& scheduler, double first = 5) : scheduler_(scheduler), first_(first) {}

  void retry(Scheduler::Work attempt) {
    pause_ = scheduler_.after(first_ * factor_, std::move(attempt));
    factor_ = std::min(factor_ * 2, 16);
  }
  /// It has worked: no further attempt, and the next failure is one of its own.
  void succeeded() {
    pause_.cancel();
    factor_ = 1;
  }

 private:
  Scheduler& scheduler_;
  const double first_;
  int factor_ = 1;
  Task pause_;
};

}  // namespace tarnwick
