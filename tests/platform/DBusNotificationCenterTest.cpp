#include "linux/bus/DBusNotificationCenter.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QMap>
#include <algorithm>

#include "platform/TestDesktop.h"

using namespace tarnwick;
using TextMap = QMap<QString, QString>;

namespace {

/// Another program of the session.
class Sender {
 public:
  Sender() : name_(QString("sender-%1").arg(++count)) {
    bus_ = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), name_);
    qDBusRegisterMetaType<TextMap>();
  }
  ~Sender() { QDBusConnection::disconnectFromBus(name_); }

  void send(const QString& member, const QVariantList& arguments) {
    auto signal = QDBusMessage::createSignal("/dev/tarnwick", "dev.tarnwick", member);
    signal.setArguments(arguments);
    bus_.send(signal);
  }

 private:
  static inline int count = 0;
  QString name_;
  QDBusConnection bus_{""};
};

QVariant map(const TextMap& values) { return QVariant::fromValue(values); }

class DBusNotificationCenterTest : public testing::Test {
 protected:
  QtScheduler& scheduler = TestDesktop::shared().scheduler;
  MessageBus bus{scheduler, sessionBusAddress, 0.1};
};

}  // namespace

TEST_F(DBusNotificationCenterTest, DeliversEachNameToItsReceiversAndWrongShapesEmpty) {
  DBusNotificationCenter center(scheduler, bus);
  std::vector<StringMap> events, showcases;
  const auto first =
      center.observe(eventNotification, [&](const StringMap& payload) { events.push_back(payload); });
  const auto second =
      center.observe(showcaseNotification, [&](const StringMap& payload) { showcases.push_back(payload); });
  TextMap many;
  for (int i = 0; i < 1000; ++i) many[QString::number(i)] = "";
  const std::vector<QVariantList> shapes{{}, {"text"}, {QVariantMap{{"session_id", "a"}}}, {QStringList{"a"}},
      {map({{"a", "b"}}), "and more"}, {42}, {map({{"prompt", QString(100'000, 'x')}})}, {map(many)}};
  Sender sender;
  for (const QVariantList& shape : shapes) sender.send("event", shape);
  sender.send("event", {map({{"event", "Stop"}, {"prompt", "é ✨"}})});
  sender.send("showcase", {map({{"cmd", "begin"}})});
  ASSERT_TRUE(waitUntil([&] { return !showcases.empty(); }));
  std::vector<StringMap> expected(shapes.size());
  expected.push_back({{"event", "Stop"}, {"prompt", "é ✨"}});
  EXPECT_EQ(events, expected);
  EXPECT_EQ(showcases, (std::vector<StringMap>{{{"cmd", "begin"}}}));
}

TEST_F(DBusNotificationCenterTest, AFloodLeavesTimeForTheRest) {
  DBusNotificationCenter center(scheduler, bus);
  std::vector<std::string> received;
  int turns = 0;
  const Task timer = scheduler.every(0.005, [&] { ++turns; });
  const auto subscription = center.observe(eventNotification, [&](const StringMap& payload) {
    received.push_back(payload.at("number"));
    for (const double end = scheduler.uptime() + 0.002; scheduler.uptime() < end;) {
    }
  });
  Sender sender;
  std::vector<std::string> sent;
  for (int i = 0; i < 200; ++i) {
    sent.push_back(std::to_string(i));
    sender.send("event", {map({{"number", QString::number(i)}})});
  }
  EXPECT_TRUE(waitUntil([&] { return received.size() == sent.size(); }));
  EXPECT_EQ(received, sent);
  EXPECT_GT(turns, 20);
}

TEST_F(DBusNotificationCenterTest, OneOverlayASession) {
  auto first = std::make_unique<DBusNotificationCenter>(scheduler, bus);
  EXPECT_FALSE(first->anotherOverlayRuns());
  MessageBus otherBus(scheduler, sessionBusAddress);
  DBusNotificationCenter second(scheduler, otherBus);
  EXPECT_TRUE(second.anotherOverlayRuns());
  second.post(openNotification, {{"window", "settings"}, {"é", ""}});
  // It is still starting.
  std::vector<StringMap> heard;
  const auto subscription =
      first->observe(openNotification, [&](const StringMap& payload) { heard.push_back(payload); });
  EXPECT_TRUE(waitUntil([&] { return !heard.empty(); }));
  EXPECT_EQ(heard, (std::vector<StringMap>{{{"window", "settings"}, {"é", ""}}}));
}

TEST_F(DBusNotificationCenterTest, DoesNotWaitForABusThatHangs) {
  TestDesktop& desktop = TestDesktop::shared();
  DBusNotificationCenter first(scheduler, bus);
  ASSERT_FALSE(first.anotherOverlayRuns());
  const auto process = static_cast<pid_t>(desktop.busProcess());
  ::kill(process, SIGSTOP);
  MessageBus other(scheduler, sessionBusAddress);
  DBusNotificationCenter second(scheduler, other);
  EXPECT_FALSE(second.anotherOverlayRuns()) << "not known yet";
  bool told = false, received = false;
  second.onAnotherOverlay = [&] { told = true; };
  const auto subscription = second.observe(eventNotification, [&](const StringMap&) { received = true; });
  ::kill(process, SIGCONT);
  EXPECT_TRUE(waitUntil([&] { return told; }));
  EXPECT_TRUE(second.anotherOverlayRuns());
  Sender sender;
  EXPECT_TRUE(waitUntil([&] {
    sender.send("event", {map({})});
    return received;
  }));
}

TEST_F(DBusNotificationCenterTest, PicksUpABusThatComesLater) {
  const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
  DBusNotificationCenter center(scheduler, bus);
  EXPECT_FALSE(center.anotherOverlayRuns());
  int received = 0;
  const auto subscription = center.observe(eventNotification, [&](const StringMap&) { ++received; });
  qputenv("DBUS_SESSION_BUS_ADDRESS", address);
  const auto arrives = [&] {
    Sender().send("event", {map({})});
    return received > 0;
  };
  EXPECT_TRUE(waitUntil(arrives));

  TestDesktop::shared().restartBus();
  received = 0;
  EXPECT_TRUE(waitUntil(arrives)) << "after the bus was restarted";
}
