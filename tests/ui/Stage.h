#pragma once
#include <QGuiApplication>
#include <functional>
#include <memory>

#include "base/ObservableObject.h"
#include "base/Observed.h"
#include "support/VirtualScheduler.h"
#include "ui/Dynamic.h"
#include "ui/Inspector.h"
#include "ui/Scene.h"

namespace tarnwick::ui {

/// A scene on the virtual clock whose only view is made by `body`; `change` alters what the body reads.
class Stage {
 public:
  explicit Stage(std::function<View()> body, Size size = {400, 300})
      : scene(scheduler, size, observing({&state_}, std::move(body))), inspect(scene) {
    scene.frame();
  }

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
  /// Lets time pass, a frame every 1/60 s.
  void run(double seconds) {
    for (double t = 0; t < seconds - 1e-9; t += 1.0 / 60) {
      scheduler.advance(1.0 / 60);
      scene.frame();
    }
  }

  VirtualScheduler scheduler;

 private:
  ObservableObject state_;

 public:
  Scene scene;
  Inspector inspect;
};

}  // namespace tarnwick::ui
