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

}  // namespace

TEST(DBusNotificationCenter, DeliversEachNameToItsReceivers) {
  DBusNotificationCenter center(TestDesktop::shared().scheduler);
  std::vector<StringMap> events, showcases;
  const auto first =
      center.observe(eventNotification, [&](const StringMap& payload) { events.push_back(payload); });
  const auto second =
      center.observe(showcaseNotification, [&](const StringMap& payload) { showcases.push_back(payload); });
  Sender sender;
  sender.send("event", {map({{"event", "Stop"}, {"prompt", "é ✨"}})});
  sender.send("showcase", {map({{"cmd", "begin"}})});
  ASSERT_TRUE(waitUntil([&] { return !showcases.empty(); }));
  EXPECT_EQ(events, (std::vector<StringMap>{{{"event", "Stop"}, {"prompt", "é ✨"}}}));
  EXPECT_EQ(showcases, (std::vector<StringMap>{{{"cmd", "begin"}}}));
}

TEST(DBusNotificationCenter, WrongShapesArriveEmpty) {
  DBusNotificationCenter center(TestDesktop::shared().scheduler);
  std::vector<StringMap> events;
  const auto subscription =
      center.observe(eventNotification, [&](const StringMap& payload) { events.push_back(payload); });
  const std::vector<QVariantList> shapes{
      {},  {"text"}, {QVariantMap{{"session_id", "a"}}}, {QStringList{"a"}}, {map({{"a", "b"}}), "and more"},
      {42}};
  Sender sender;
  for (const QVariantList& shape : shapes) sender.send("event", shape);
  sender.send("event", {map({{"last", "one"}})});
  ASSERT_TRUE(waitUntil([&] { return events.size() == shapes.size() + 1; }));
  for (size_t i = 0; i < shapes.size(); ++i) EXPECT_EQ(events[i], StringMap{}) << i;
  EXPECT_EQ(events.back(), (StringMap{{"last", "one"}}));
}

TEST(DBusNotificationCenter, OneOverlayASession) {
  auto first = std::make_unique<DBusNotificationCenter>(TestDesktop::shared().scheduler);
  EXPECT_FALSE(first->anotherOverlayRuns());
  EXPECT_TRUE(DBusNotificationCenter(TestDesktop::shared().scheduler).anotherOverlayRuns());
  first.reset();
  // The bus hears of the end a moment later.
  EXPECT_TRUE(waitUntil(
      [] { return !DBusNotificationCenter(TestDesktop::shared().scheduler).anotherOverlayRuns(); }));
}

TEST(DBusNotificationCenter, DoesNotWaitForABusThatHangs) {
  TestDesktop& desktop = TestDesktop::shared();
  DBusNotificationCenter first(desktop.scheduler);
  ASSERT_FALSE(first.anotherOverlayRuns());
  const auto bus = static_cast<pid_t>(desktop.busProcess());
  ::kill(bus, SIGSTOP);
  DBusNotificationCenter second(desktop.scheduler);
  EXPECT_FALSE(second.anotherOverlayRuns()) << "not known yet";
  bool told = false, received = false;
  second.onAnotherOverlay = [&] { told = true; };
  const auto subscription = second.observe(eventNotification, [&](const StringMap&) { received = true; });
  ::kill(bus, SIGCONT);
  EXPECT_TRUE(waitUntil([&] { return told; }));
  EXPECT_TRUE(second.anotherOverlayRuns());
  Sender sender;
  EXPECT_TRUE(waitUntil([&] {
    sender.send("event", {map({})});
    return received;
  }));
}

TEST(DBusNotificationCenter, PicksUpABusThatComesLater) {
  const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
  DBusNotificationCenter center(TestDesktop::shared().scheduler);
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
