#include "linux/x11/X11DisplayServer.h"

#include "linux/x11/X11NotchPanel.h"
#include "linux/x11/X11Shortcuts.h"

namespace tarnwick {
namespace {

class X11DisplayConnection : public DisplayConnection {
 public:
  explicit X11DisplayConnection(std::unique_ptr<X11Connection> connection)
      : connection_(std::move(connection)) {}

  const char* toolkitPlugin() const override { return "xcb"; }
  std::unique_ptr<DisplayServer> start(Scheduler& scheduler) override {
    connection_->start();
    return std::make_unique<X11DisplayServer>(*connection_, scheduler);
  }

 private:
  std::unique_ptr<X11Connection> connection_;
};

}  // namespace

std::unique_ptr<DisplayConnection> connectToX11() {
  auto connection = X11Connection::open();
  return connection ? std::make_unique<X11DisplayConnection>(std::move(connection)) : nullptr;
}

X11DisplayServer::X11DisplayServer(X11Connection& connection, Scheduler& scheduler)
    : connection_(connection), scheduler_(scheduler) {}

std::unique_ptr<GlobalShortcuts> X11DisplayServer::makeShortcuts() {
  return connection_.isXWayland() ? nullptr : std::make_unique<X11Shortcuts>(connection_, scheduler_);
}

std::unique_ptr<HostingPanel> X11DisplayServer::makePanel(PanelContent content) {
  return std::make_unique<X11NotchPanel>(connection_, screens_, scheduler_, std::move(content));
}

}  // namespace tarnwick
