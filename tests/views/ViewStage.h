#pragma once
#include <utility>

#include "support/VirtualScheduler.h"
#include "ui/Inspector.h"

namespace tarnwick {

/// One view on a virtual clock, in a window of its own.
struct ViewStage {
  explicit ViewStage(ui::View view, Size size = {400, 200}) : scene(offTheBeat(), size, std::move(view)) {
    scene.frame();
  }

  /// Steps the clock frame by frame.
  void play(double seconds) {
    constexpr double frame = 1.0 / 60;
    for (double left = seconds; left > 1e-9; left -= frame) {
      scheduler.advance(std::min(frame, left));
      scene.frame();
    }
  }

  /// Pictures that change by the clock are not to be taken just as they do.
  VirtualScheduler& offTheBeat() {
    scheduler.advance(0.03);
    return scheduler;
  }

  VirtualScheduler scheduler;
  ui::Scene scene;
  ui::Inspector inspector{scene};
};

}  // namespace tarnwick
