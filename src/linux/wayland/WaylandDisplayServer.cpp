#include "linux/wayland/WaylandDisplayServer.h"

#include <QCoreApplication>
#include <QDir>
#include <QThread>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "linux/process/Module.h"
#include "linux/wayland/WaylandNotchPanel.h"

namespace tarnwick {
namespace {

QtMessageHandler printMessage = nullptr;

/// More than the main thread needs to write what is not written yet.
constexpr auto endingTime = std::chrono::seconds(2);

/// When the compositor goes, the toolkit says so and ends the process without its exit handlers, which write
/// what is not written yet. They are run before it gets to that, on the main thread alone; the toolkit's own
/// thread, which may be the first to know, waits meanwhile.
void noteMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  printMessage(type, context, text);
  if (!text.startsWith("The Wayland connection")) return;
  const auto end = [] { std::exit(EXIT_FAILURE); };
  if (QThread::currentThread() == qApp->thread()) end();
  QMetaObject::invokeMethod(qApp, end, Qt::QueuedConnection);
  std::this_thread::sleep_for(endingTime);
}

class WaylandConnection : public DisplayConnection {
 public:
  explicit WaylandConnection(std::unique_ptr<WaylandClient> client) : client_(std::move(client)) {}

  const char* toolkitPlugin() const override { return "wayland"; }
  std::unique_ptr<DisplayServer> start(Scheduler& scheduler) override {
    // A window that bypasses the window manager gets no role from the toolkit then, and can have another one.
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
    printMessage = qInstallMessageHandler(noteMessage);
    client_->start();
    return std::make_unique<WaylandDisplayServer>(*client_, scheduler);
  }

 private:
  std::unique_ptr<WaylandClient> client_;
};

/// The toolkit ends the process when it is asked for a platform that it does not have.
bool toolkitHasPlatform() {
  QStringList folders =
      qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH").split(QDir::listSeparator(), Qt::SkipEmptyParts);
  for (const QString& folder : QCoreApplication::libraryPaths()) folders << folder + "/platforms";
  return std::ranges::any_of(folders, [](const QString& folder) {
    return !QDir(folder).entryList({"libqwayland*.so"}, QDir::Files).isEmpty();
  });
}

}  // namespace

WaylandDisplayServer::WaylandDisplayServer(WaylandClient& client, Scheduler& scheduler)
    : client_(client),
      screens_(scheduler),
      windows_(client.toplevels(), screens_, scheduler),
      activation_(client.toplevels()) {}

std::unique_ptr<HostingPanel> WaylandDisplayServer::makePanel(PanelContent content) {
  return std::make_unique<WaylandNotchPanel>(client_, screens_, std::move(content));
}

std::unique_ptr<DisplayConnection> connectToWayland(const std::string& modules) {
  if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) return nullptr;
  const QString wanted = qEnvironmentVariable("QT_QPA_PLATFORM");
  if (!wanted.isEmpty() && !wanted.startsWith("wayland")) return nullptr;
  auto* make =
      reinterpret_cast<MakeWaylandClient*>(moduleFunction(modules + "/Wayland.so", makeWaylandClientName));
  if (!make) return nullptr;
  std::unique_ptr<WaylandClient> client(make());
  if (!client->offersLayers()) return nullptr;
  if (!toolkitHasPlatform()) {
    std::fputs(
        "Tarnwick: the toolkit's platform for Wayland is not installed (Debian's package qt6-wayland);\n"
        "using XWayland, where the notch sees less of the pointer and takes fewer drops.\n",
        stderr);
    return nullptr;
  }
  return std::make_unique<WaylandConnection>(std::move(client));
}

}  // namespace tarnwick
