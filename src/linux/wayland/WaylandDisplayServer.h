#pragma once
#include <memory>
#include <string>

#include "linux/display/DisplayServer.h"
#include "linux/wayland/NoMediaKeys.h"
#include "linux/wayland/WaylandClient.h"
#include "linux/wayland/WaylandScreens.h"
#include "linux/wayland/WaylandWindowActivation.h"
#include "linux/wayland/WaylandWindowList.h"

namespace tarnwick {

/// A Wayland compositor whose windows can have a layer.
class WaylandDisplayServer : public DisplayServer {
 public:
  /// @param client started
  WaylandDisplayServer(WaylandClient& client, Scheduler& scheduler);

  Screens& screens() override { return screens_; }
  WindowList& windows() override { return windows_; }
  WindowActivation& activation() override { return activation_; }
  MediaKeys& mediaKeys() override { return mediaKeys_; }

  bool hasRoomForShadow() const override { return true; }
  std::unique_ptr<HostingPanel> makePanel(PanelContent content) override;

 private:
  WaylandClient& client_;
  WaylandScreens screens_;
  WaylandWindowList windows_;
  WaylandWindowActivation activation_;
  NoMediaKeys mediaKeys_;
};

/// None when the session is none of Wayland, its compositor gives no layers, or the user wants another
/// platform of the toolkit (`QT_QPA_PLATFORM`). Also none, which standard error is told, when the toolkit's
/// platform for Wayland is missing.
/// @param modules the folder of the program's modules
std::unique_ptr<DisplayConnection> connectToWayland(const std::string& modules);

}  // namespace tarnwick
