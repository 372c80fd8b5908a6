#pragma once
#include <algorithm>
#include <functional>

#include "base/ObservableObject.h"
#include "base/Observed.h"
#include "showcase/memory/VirtualScheduler.h"
#include "ui/Dynamic.h"
#include "ui/engine/Inspector.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {

/// A scene on a virtual clock, and what a test does with it.
class Stage {
 public:
  /// @param clock must outlive the stage; none: one of its own
  explicit Stage(View view, Size size = {400, 300}, double pixelRatio = 1, VirtualScheduler* clock = nullptr)
      : scheduler(clock ? *clock : own_), scene(scheduler, size, std::move(view), pixelRatio) {
    // Pictures that change by the clock are not to be taken just as they do.
    own_.advance(0.03);
    scene.frame();
  }
  /// The view is made by `body`; `change` alters what that reads.
  explicit Stage(std::function<View()> body)
      : Stage(observing([this, body = std::move(body)] {
          state_.noteRead();
          return body();
        })) {}

  /// Runs `edit` and shows the result along `animation` (at once without one).
  void change(const std::function<void()>& edit, std::optional<Animation> animation = std::nullopt) {
    const auto both = [&] {
      edit();
      state_.notifyObservers();
    };
    if (animation)
      withAnimation(*animation, both);
    else
      both();
    scene.frame();
  }
  /// Lets time pass, frame by frame.
  void play(double seconds) {
    constexpr double frame = 1.0 / 60;
    for (double left = seconds; left > 1e-9; left -= frame) {
      scheduler.advance(std::min(frame, left));
      scene.frame();
    }
  }

 private:
  VirtualScheduler own_;
  ObservableObject state_;

 public:
  VirtualScheduler& scheduler;
  Scene scene;
  Inspector inspect{scene};
};

}  // namespace tarnwick::ui
