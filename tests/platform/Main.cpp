#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <memory>
#include <stdexcept>

#include "platform/Roles.h"
#include "platform/TestDesktop.h"
#include "support/BusThreadEnd.h"
#include "support/TemporaryFolder.h"

using namespace tarnwick;

namespace {

const BusThreadEnd busThreadEnd;

void run(const QString& program, const QStringList& arguments) {
  if (QProcess::execute(program, arguments) != 0) throw std::runtime_error(program.toStdString() + " failed");
}

/// Starts an X server with the two monitors and makes it this process's display.
std::unique_ptr<Child> startServer(const std::string& folder) {
  // The server picks a free number and writes it down.
  const QString file = QString::fromStdString(folder + "/display");
  auto server = std::make_unique<Child>("sh",
      QStringList{"-c",
          "exec Xvfb -displayfd 3 -noreset -nolisten tcp -screen 0 1800x800x24 3>\"$0\" 2>/dev/null", file});
  QByteArray number;
  const auto written = [&] {
    QFile content(file);
    if (content.open(QFile::ReadOnly)) number = content.readAll();
    return number.endsWith('\n');
  };
  for (int attempt = 0; !written() && attempt < 3000; ++attempt) usleep(10'000);
  qputenv("DISPLAY", ":" + number.trimmed());
  run("xrandr", {"--setmonitor", "*left", "1000/250x800/200+0+0", "screen"});
  run("xrandr", {"--setmonitor", "right", "800/200x600/150+1000+200", "none"});
  return server;
}

}  // namespace

int main(int argc, char** argv) {
  if (const int status = playRole(argc, argv); status >= 0) return status;
  testing::InitGoogleTest(&argc, argv);

  const TemporaryFolder folder;
  qputenv("XDG_RUNTIME_DIR", folder.path().c_str());
  qputenv("XDG_CONFIG_HOME", folder.path().c_str());
  for (const char* name : {"WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "SESSION_MANAGER"}) qunsetenv(name);
  const std::unique_ptr<Child> server = startServer(folder.path());
  qputenv("QT_SCREEN_SCALE_FACTORS", "left=1;right=2");
  qputenv("QT_QPA_PLATFORMTHEME", "generic");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  TestDesktop desktop;
  return RUN_ALL_TESTS();
}
