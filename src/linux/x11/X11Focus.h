#pragma once
#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// Takes the keyboard focus for a window that the window manager does not know, and gives it back.
class X11Focus {
 public:
  explicit X11Focus(X11Connection& connection) : connection_(connection) {}

  /// Remembers who has the focus and gives it to `window`, which must be on the screen.
  void take(xcb_window_t window);
  /// Gives the focus back to who had it; to the topmost window that can have it when that one has gone.
  void giveBack();

 private:
  bool focus(xcb_window_t window);

  X11Connection& connection_;
  /// The input focus, then what the window manager called the active window.
  std::vector<xcb_window_t> previous_;
};

}  // namespace tarnwick
