#include "app/OpenDisplay.h"

#include <cstdio>

#include "linux/process/Module.h"
#include "linux/wayland/WaylandDisplayServer.h"
#include "linux/x11/X11DisplayServer.h"

namespace tarnwick {

std::unique_ptr<DisplayConnection> openDisplay() {
  if (auto wayland = connectToWayland(moduleFolder())) return wayland;
  // Other Wayland sessions offer X through XWayland.
  if (auto x11 = connectToX11()) return x11;
  std::fputs(
      "Tarnwick: no X display can be opened. Start it inside a graphical session, or set DISPLAY.\n"
      "In a Wayland session, its compositor must offer layers (zwlr_layer_shell_v1), or XWayland must be "
      "running.\n",
      stderr);
  return nullptr;
}

}  // namespace tarnwick
