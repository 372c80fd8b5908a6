#include "linux/bus/BacklightBrightness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <filesystem>
#include <fstream>

#include "platform/TestDesktop.h"
#include "support/TemporaryFolder.h"

using namespace tarnwick;

namespace {

constexpr auto login = "org.freedesktop.login1";
constexpr auto session = "/org/freedesktop/login1/session/auto";

/// The kernel's class of panels, and the login daemon that writes into it.
class BacklightTest : public testing::Test {
 protected:
  void panel(const std::string& name, const std::string& type, long maximum, long value,
      const std::string& connector = "", bool enabled = true) {
    const std::string folder = sysfs.path() + "/backlight/" + name;
    std::filesystem::create_directories(folder);
    write(folder + "/type", type);
    write(folder + "/max_brightness", std::to_string(maximum));
    write(folder + "/brightness", std::to_string(value));
    if (connector.empty()) return;
    const std::string device = sysfs.path() + "/" + connector;
    std::filesystem::create_directories(device);
    write(device + "/enabled", enabled ? "enabled" : "disabled");
    std::filesystem::create_directory_symlink(device, folder + "/device");
  }
  static void write(const std::string& file, const std::string& text) { std::ofstream(file) << text << '\n'; }
  long raw(const std::string& name) {
    long value = -1;
    std::ifstream(sysfs.path() + "/backlight/" + name + "/brightness") >> value;
    return value;
  }
  void unplug(const std::string& name) { std::filesystem::remove_all(sysfs.path() + "/backlight/" + name); }

  QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "login-test");

  BacklightTest() {
    // The session's bus serves as the system's.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", qgetenv("DBUS_SESSION_BUS_ADDRESS"));
    systemBus.open();
    EXPECT_TRUE(waitUntil([this] { return systemBus.connection().has_value(); }));
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
  }
  ~BacklightTest() override { QDBusConnection::disconnectFromBus("login-test"); }

  /// A login daemon that does what it is asked to.
  void startLoginDaemon() {
    daemon = std::make_unique<Child>(
        "/usr/bin/python3", QStringList{"-m", "dbusmock", login, session, "org.freedesktop.login1.Session"});
    ASSERT_TRUE(waitUntil([this] { return bus.interface()->isServiceRegistered(login).value(); }));
    const QString code =
        "f = open('" + QString::fromStdString(sysfs.path()) +
        "/%s/%s/brightness' % (args[0], args[1]), 'w'); f.write('%d' % args[2]); f.close()";
    const QDBusMessage reply =
        mock("AddMethod", {"org.freedesktop.login1.Session", "SetBrightness", "ssu", "", code});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
  }
  QDBusMessage mock(const char* method, const QVariantList& arguments) {
    auto call = QDBusMessage::createMethodCall(login, session, "org.freedesktop.DBus.Mock", method);
    call.setArguments(arguments);
    return bus.call(call);
  }
  int calls() {
    const QDBusMessage reply = mock("GetMethodCalls", {"SetBrightness"});
    const auto list = reply.arguments().value(0).value<QDBusArgument>();
    int count = 0;
    for (list.beginArray(); !list.atEnd(); ++count) {
      quint64 time;
      QVariantList arguments;
      list.beginStructure();
      list >> time >> arguments;
      list.endStructure();
    }
    list.endArray();
    return count;
  }

  TemporaryFolder sysfs;
  std::unique_ptr<Child> daemon;
  MessageBus systemBus{TestDesktop::shared().scheduler, systemBusAddress};
  BacklightBrightness brightness{TestDesktop::shared().scheduler, systemBus, sysfs.path() + "/backlight"};
};

/// What the panel that it finds can be seen to be at, once the login daemon has let it be written to.
std::optional<double> settled(BacklightBrightness& brightness) {
  waitUntil([&] { return brightness.current().has_value(); });
  return brightness.current();
}

}  // namespace

TEST_F(BacklightTest, FindsTheBuiltInPanel) {
  startLoginDaemon();
  EXPECT_EQ(brightness.current(), std::nullopt);
  brightness.set(0.5);  // nothing to set
  // Each is preferred to all before it.
  panel("ddcci6", "raw", 100, 10);
  EXPECT_EQ(settled(brightness), 0.1);
  const struct {
    const char* name;
    const char* type;
    const char* connector;
    bool enabled;
  } better[] = {{"nvidia_0", "raw", "card1-LVDS-1", false}, {"amdgpu_bl0", "raw", "card0-eDP-1", true},
      {"thinkpad_screen", "platform", "", true}, {"acpi_video0", "firmware", "", true}};
  long value = 20;
  for (const auto& c : better) {
    panel(c.name, c.type, 100, value, c.connector, c.enabled);
    panel("zz_monitor", "raw", 100, 99, "card0-DP-2");
    BacklightBrightness fresh(TestDesktop::shared().scheduler, systemBus, sysfs.path() + "/backlight");
    EXPECT_EQ(settled(fresh), static_cast<double>(value) / 100) << c.name;
    unplug("zz_monitor");
    value += 10;
  }
  panel("broken", "firmware", 0, 0);
  unplug("ddcci6");
  EXPECT_EQ(settled(brightness), 0.5) << "the panel that it knew has gone";
}

TEST_F(BacklightTest, SetsThePanelThroughTheLoginDaemon) {
  const struct {
    long maximum, before;
    double to;
    long after;
  } cases[] = {
      {1000, 500, 0.5625, 563}, {1000, 500, 0, 0}, {1000, 1000, 2, 1000}, {10, 5, 0.54, 5}, {10, 5, 0.56, 6}};
  startLoginDaemon();
  for (const auto& c : cases) {
    unplug("panel");
    panel("panel", "firmware", c.maximum, c.before);
    BacklightBrightness own(TestDesktop::shared().scheduler, systemBus, sysfs.path() + "/backlight");
    ASSERT_TRUE(settled(own));
    own.set(c.to);
    EXPECT_EQ(own.current(), static_cast<double>(c.after) / static_cast<double>(c.maximum)) << "at once";
    EXPECT_TRUE(waitUntil([&] { return raw("panel") == c.after; })) << c.maximum << ' ' << c.to;
    EXPECT_EQ(own.unit(), 1.0 / static_cast<double>(c.maximum));
  }
}

TEST_F(BacklightTest, IsWrittenAtMostOnceAFrameAndComesToTheLastWish) {
  panel("panel", "firmware", 1000, 0);
  startLoginDaemon();
  ASSERT_TRUE(settled(brightness));
  const QtScheduler& scheduler = TestDesktop::shared().scheduler;
  const int before = calls();
  const double start = scheduler.uptime();
  // A hand that is quicker than the screen.
  for (double now = start; now < start + 0.3; now = scheduler.uptime()) {
    brightness.set((now - start) * 2);
    QCoreApplication::processEvents();
  }
  for (int i = 0; i < 100; ++i) brightness.set(0.9 + i / 1000.0);
  brightness.set(1);
  EXPECT_EQ(brightness.current(), 1) << "at once";
  EXPECT_TRUE(waitUntil([this] { return raw("panel") == 1000; }));
  EXPECT_LE(calls() - before, (scheduler.uptime() - start) * 60 + 2);
}

TEST_F(BacklightTest, TellsWhoeverFollowsOfChangesByOthers) {
  panel("panel", "firmware", 1000, 500);
  startLoginDaemon();
  ASSERT_TRUE(settled(brightness));
  int told = 0;
  auto following = brightness.follow([&] { ++told; });
  write(sysfs.path() + "/backlight/panel/brightness", "400");
  EXPECT_TRUE(waitUntil([&] { return told > 0 && brightness.current() == 0.4; }));
  following = {};
  told = 0;
  auto other = brightness.follow([&] { ++told; });
  other = {};
  write(sysfs.path() + "/backlight/panel/brightness", "300");
  auto last = brightness.follow([&] { told += 10; });
  write(sysfs.path() + "/backlight/panel/brightness", "200");
  EXPECT_TRUE(waitUntil([&] { return told >= 10; }));
  EXPECT_EQ(told % 10, 0) << "nobody follows it any more";
}

TEST_F(BacklightTest, KnowsWhetherThePanelCanBeWritten) {
  panel("panel", "firmware", 10, 5);
  int changes = 0;
  const auto observer = brightness.observe([&] { ++changes; });
  const auto becomes = [&](std::optional<double> value) {
    const bool told = waitUntil([&] { return changes == 1; });
    changes = 0;
    return told && brightness.current() == value;
  };
  const auto sessionChanges = [this] {
    mock("EmitSignal", {"org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                           QVariantList{"org.freedesktop.login1.Session", QVariantMap(), QStringList()}});
  };
  const auto answer = [this](const char* code) {
    mock("AddMethod", {"org.freedesktop.login1.Session", "SetBrightness", "ssu", "", code});
  };
  EXPECT_EQ(brightness.current(), std::nullopt) << "there is no login daemon";
  startLoginDaemon();
  sessionChanges();
  EXPECT_TRUE(becomes(0.5));
  EXPECT_EQ(raw("panel"), 5);
  answer("raise Exception('the session is in the background')");
  brightness.set(1);
  EXPECT_TRUE(becomes(std::nullopt));
  answer("");
  sessionChanges();
  EXPECT_TRUE(becomes(0.5));
  daemon->kill();
  EXPECT_TRUE(becomes(std::nullopt));
}
