#pragma once
#include "base/Scheduler.h"
#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// Keeps a window that no window manager looks after above all windows that one does, full-screen ones too,
/// and above panels that look after themselves. Screen lockers, menus and tooltips, of whatever program, stay
/// above it when they are.
class X11Stacking {
 public:
  X11Stacking(X11Connection& connection, Scheduler& scheduler, xcb_window_t window);

 private:
  void handle(const xcb_generic_event_t& event);
  void raise();
  /// The highest of `above` (bottom to top) that must lie below the window; none when none does.
  xcb_window_t highestToPass(const std::vector<xcb_window_t>& above) const;

  X11Connection& connection_;
  Scheduler& scheduler_;
  xcb_window_t window_;
  bool raisePending_ = false;
  Task raising_;
  Subscription events_;
};

}  // namespace tarnwick
