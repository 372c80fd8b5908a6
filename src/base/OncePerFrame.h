#pragma once
#include <functional>

#include "base/Scheduler.h"

namespace tarnwick {

/// Does work when it is asked to, but no more often than the screen shows frames: what is asked for sooner is
/// done once, when a frame's time has passed.
class OncePerFrame {
 public:
  OncePerFrame(Scheduler& scheduler, std::function<void()> work)
      : scheduler_(scheduler), work_(std::move(work)) {}

  void request() {
    wanted_ = true;
    if (!pause_) run();
  }

 private:
  static constexpr double frame = 1.0 / 60;

  void run() {
    wanted_ = false;
    pause_ = scheduler_.after(frame, [this] {
      pause_ = {};
      if (wanted_) run();
    });
    work_();
  }

  Scheduler& scheduler_;
  const std::function<void()> work_;
  Task pause_;
  bool wanted_ = false;
};

}  // namespace tarnwick
