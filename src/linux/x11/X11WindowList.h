#pragma once
#include <set>

#include "base/Scheduler.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Screens.h"
#include "platform/WindowList.h"

namespace tarnwick {

/// The windows that the window manager lists. Asked again only after something happened to a window: in
/// between the answer costs nothing.
class X11WindowList : public WindowList {
 public:
  X11WindowList(X11Connection& connection, const X11Screens& screens, Scheduler& scheduler);

  std::optional<std::vector<WindowInfo>> onScreen() override;
  int64_t ownProcess() const override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

 private:
  struct PixelWindow {
    xcb_window_t window;
    std::optional<int64_t> owner;
    Rect pixels;
    bool maximized;
  };

  void handle(const xcb_generic_event_t& event);
  void changed();
  std::optional<std::vector<PixelWindow>> read() const;
  bool managerComposes() const;
  void watch(const std::set<xcb_window_t>& windows);

  X11Connection& connection_;
  const X11Screens& screens_;
  Scheduler& scheduler_;
  bool stale_ = true;
  std::optional<std::vector<PixelWindow>> windows_;
  /// Windows as large as a screen: their state can change without anything happening to them that is to be
  /// seen.
  std::set<xcb_window_t> watched_;
  ObservableObject changes_;
  bool willTell_ = false;
  Task telling_;
  Subscription events_;
};

}  // namespace tarnwick
