#pragma once
#include <map>

#include "base/Scheduler.h"
#include "linux/wayland/WaylandClient.h"
#include "linux/wayland/WaylandScreens.h"
#include "platform/WindowList.h"

namespace tarnwick {

/// The windows that fill a screen: of others no compositor tells the place. Nor are workspaces told: what is
/// to be seen on a screen is taken to be the window on it that had the keyboard last.
class WaylandWindowList : public WindowList {
 public:
  /// @param toplevels null where the compositor does not tell.
  WaylandWindowList(Toplevels* toplevels, const WaylandScreens& screens, Scheduler& scheduler);

  std::optional<std::vector<WindowInfo>> onScreen() override;
  int64_t ownProcess() const override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

 private:
  void changed();

  Toplevels* toplevels_;
  const WaylandScreens& screens_;
  /// By the screen's name: the window that had the keyboard last.
  std::map<std::string, uint32_t> front_;
  /// Whether one has it now; as it was while this program has it.
  bool someoneIsActive_ = false;
  ObservableObject changes_;
  Scheduler& scheduler_;
  Task telling_;
};

}  // namespace tarnwick
