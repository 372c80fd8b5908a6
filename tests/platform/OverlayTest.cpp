// The overlay as a program: how it starts and ends.
#include <gtest/gtest.h>
#include <signal.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>

#include "platform/TestDesktop.h"

using namespace tarnwick;

namespace {

TestDesktop& desktop() { return TestDesktop::shared(); }

struct Overlay : QProcess {
  explicit Overlay(const char* display = nullptr) {
    if (display) {
      QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
      environment.insert("DISPLAY", display);
      setProcessEnvironment(environment);
    }
    start(TARNWICK_OVERLAY, QStringList{"--unknown", "-platform", "offscreen"});
  }
  ~Overlay() override {
    kill();
    waitForFinished();
  }
  bool ended() {
    return waitUntil([this] { return state() == NotRunning; });
  }
};

}  // namespace

TEST(Overlay, ShowsItsWindowAndEndsOnASignal) {
  // No window of a program, for which the notch would hide.
  const auto behind = desktop().startUnmanaged("behind", {0, 0, 1000, 800});
  const auto shows = [](int x, int y, uint32_t color) {
    return [=] { return desktop().pixel(x, y) == color; };
  };
  ASSERT_TRUE(waitUntil(shows(500, 5, 0x00ff00)));
  Overlay overlay;
  // With nothing to show it appears under the pointer only.
  int step = 0;
  EXPECT_TRUE(waitUntil([&] {
    desktop().hands.movePointer(500 + ++step % 2, 2);
    return desktop().pixel(500, 5) == 0;
  })) << "the surface, over the middle of the primary screen";
  EXPECT_TRUE(waitUntil(shows(500, 300, 0x00ff00))) << "and nothing else";

  Overlay second;
  EXPECT_TRUE(second.ended());
  EXPECT_EQ(second.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(second.exitCode(), 0);
  EXPECT_EQ(second.readAllStandardError(), "Tarnwick is running already.\n");

  ::kill(static_cast<pid_t>(overlay.processId()), SIGTERM);
  EXPECT_TRUE(overlay.ended());
  EXPECT_EQ(overlay.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(overlay.exitCode(), 0);
}

TEST(Overlay, DoesNotWaitForABusThatIsSilent) {
  const auto behind = desktop().startUnmanaged("behind", {0, 0, 1000, 800});
  ASSERT_TRUE(waitUntil([] { return desktop().pixel(500, 5) == 0x00ff00; }));
  const auto bus = static_cast<pid_t>(desktop().busProcess());
  ::kill(bus, SIGSTOP);
  Overlay overlay;
  int step = 0;
  const auto shows = [&] {
    desktop().hands.movePointer(500 + ++step % 2, 2);
    return desktop().pixel(500, 5) == 0;
  };
  EXPECT_TRUE(waitUntil(shows));
  const int64_t process = overlay.processId();
  ::kill(bus, SIGCONT);

  QDBusConnection connection =
      QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), "looking on");
  EXPECT_TRUE(waitUntil([&] {
    const auto owner = connection.interface()->servicePid("dev.tarnwick.Tarnwick");
    return owner.isValid() && owner.value() == process;
  })) << "it comes to the bus when that answers";
  EXPECT_TRUE(waitUntil(shows));
  EXPECT_EQ(overlay.state(), QProcess::Running);
  QDBusConnection::disconnectFromBus("looking on");
}

TEST(Overlay, SaysThatThereIsNoDisplay) {
  Overlay overlay(":99999");
  EXPECT_TRUE(overlay.ended());
  EXPECT_EQ(overlay.exitCode(), 1);
  EXPECT_TRUE(overlay.readAllStandardError().contains("no X display"));
}
