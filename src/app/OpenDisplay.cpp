#include "app/OpenDisplay.h"

#include <cstdio>

#include "linux/x11/X11DisplayServer.h"

namespace tarnwick {

std::unique_ptr<DisplayConnection> openDisplay() {
  // A Wayland session offers X through XWayland.
  if (auto x11 = connectToX11()) return x11;
  std::fputs(
      "Tarnwick: no X display can be opened. Start it inside a graphical session, or set DISPLAY.\n"
      "In a Wayland session, XWayland must be running.\n",
      stderr);
  return nullptr;
}

}  // namespace tarnwick
