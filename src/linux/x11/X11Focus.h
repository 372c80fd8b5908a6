#pragma once
#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// Takes the keyboard focus for a window that the window manager does not know, and gives it back. The server
/// is asked who has it: the toolkit learns of it later.
class X11Focus {
 public:
  explicit X11Focus(X11Connection& connection) : connection_(connection) {}

  /// Remembers who has the focus and gives it to `window`, which must be on the screen. Nothing when it has
  /// it.
  void take(xcb_window_t window);
  /// Gives the focus back to who had it; to the topmost window that can have it when that one has gone.
  /// Nothing when it was not taken, or has gone to another window since.
  void giveBack();

 private:
  bool focus(xcb_window_t window);

  X11Connection& connection_;
  xcb_window_t holder_ = XCB_WINDOW_NONE;
  /// The input focus, then what the window manager called the active window.
  std::vector<xcb_window_t> previous_;
};

}  // namespace tarnwick
