#pragma once
#include <string>

#include "core/NotchModel.h"
#include "support/MemoryDesktop.h"
#include "ui/Stage.h"
#include "views/NotchRootView.h"

namespace tarnwick {

/// What the notch shows.
struct NotchState {
  MemoryDesktop desktop;
  NotchModel model{desktop.ports};
  int settingsOpened = 0;
};

/// The whole notch on a virtual clock: a model, and the root view in a window of 940 by 380 points.
struct NotchStage : NotchState, ui::Stage {
  explicit NotchStage(double pixelRatio = 1)
      : Stage(
            notchRootView(model, [this] { ++settingsOpened; }), {940, 380}, pixelRatio, &desktop.scheduler) {
    settle();
  }

  /// Longer than anything moves by itself (and shorter than an indicator's stay).
  void settle() { play(1.4); }

  void hook(const std::string& session, const std::string& event, StringMap more = {}) {
    more["session_id"] = session;
    more["hook_event_name"] = event;
    withAnimation(notchOpen, [&] { model.claude.handle(more); });
  }
};

}  // namespace tarnwick
