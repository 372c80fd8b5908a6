#pragma once
#include <functional>
#include <optional>
#include <string>

#include "core/NotchModel.h"
#include "support/MemoryDesktop.h"
#include "ui/Inspector.h"
#include "views/NotchRootView.h"

namespace tarnwick {

/// The whole notch on a virtual clock: a model, the root view in a window of 940 by 380 points, and an
/// inspector.
struct NotchStage {
  explicit NotchStage(double pixelRatio = 1) {
    scene.emplace(desktop.scheduler, Size{940, 380}, notchRootView(model, [this] { ++settingsOpened; }),
                  pixelRatio);
    inspector.emplace(*scene);
    settle();
  }

  /// Steps the clock frame by frame.
  void play(double seconds) {
    constexpr double frame = 1.0 / 60;
    for (double left = seconds; left > 1e-9; left -= frame) {
      desktop.scheduler.advance(std::min(frame, left));
      scene->frame();
    }
  }
  /// Longer than anything moves by itself (and shorter than an indicator's stay).
  void settle() { play(1.4); }

  void hook(const std::string& session, const std::string& event, StringMap more = {}) {
    more["session_id"] = session;
    more["hook_event_name"] = event;
    withAnimation(notchOpen, [&] { model.claude.handle(more); });
  }

  MemoryDesktop desktop;
  NotchModel model{desktop.ports};
  int settingsOpened = 0;
  std::optional<ui::Scene> scene;
  std::optional<ui::Inspector> inspector;
};

}  // namespace tarnwick
