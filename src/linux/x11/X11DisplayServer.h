#pragma once
#include "linux/display/DisplayServer.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11MediaKeys.h"
#include "linux/x11/X11Screens.h"
#include "linux/x11/X11WindowActivation.h"
#include "linux/x11/X11WindowList.h"
#include "linux/x11/XSettings.h"

namespace tarnwick {

/// An X server, also one that serves X programs in a Wayland session.
class X11DisplayServer : public DisplayServer {
 public:
  X11DisplayServer(X11Connection& connection, Scheduler& scheduler);

  Screens& screens() override { return screens_; }
  WindowList& windows() override { return windows_; }
  WindowActivation& activation() override { return activation_; }
  MediaKeys& mediaKeys() override { return mediaKeys_; }
  std::string iconTheme() const override { return xSetting(connection_, "Net/IconThemeName"); }
  std::unique_ptr<GlobalShortcuts> makeShortcuts() override;

  /// Under XWayland it is as large as the surface.
  bool hasRoomForShadow() const override { return !connection_.isXWayland(); }
  std::unique_ptr<HostingPanel> makePanel(PanelContent content) override;

 private:
  X11Connection& connection_;
  Scheduler& scheduler_;
  X11Screens screens_{connection_, scheduler_};
  X11WindowList windows_{connection_, screens_, scheduler_};
  X11WindowActivation activation_{connection_};
  X11MediaKeys mediaKeys_{connection_, scheduler_};
};

/// None when there is no X server to connect to.
std::unique_ptr<DisplayConnection> connectToX11();

}  // namespace tarnwick
