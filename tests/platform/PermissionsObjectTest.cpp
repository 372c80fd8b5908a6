#include "linux/bus/PermissionsObject.h"

#include <gmock/gmock.h>

#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusPendingReply>

#include "platform/TestDesktop.h"

using namespace tarnwick;
using testing::ElementsAre;
using TextMap = QMap<QString, QString>;

namespace {

/// A program that asks.
class Asker {
 public:
  Asker() : name_(QString("asker-%1").arg(++count)) {
    bus_ = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), name_);
    qDBusRegisterMetaType<TextMap>();
  }
  ~Asker() { leave(); }
  void leave() {
    bus_ = QDBusConnection("");
    QDBusConnection::disconnectFromBus(name_);
  }
  QDBusPendingCall ask(const TextMap& event) {
    auto call = QDBusMessage::createMethodCall(
        "dev.tarnwick.Tarnwick", "/dev/tarnwick/permissions", "dev.tarnwick", "Ask");
    call << QVariant::fromValue(event);
    return bus_.asyncCall(call);
  }
  void tell(const TextMap& event) {
    auto signal = QDBusMessage::createSignal("/dev/tarnwick", "dev.tarnwick", "event");
    signal << QVariant::fromValue(event);
    bus_.send(signal);
  }

 private:
  static inline int count = 0;
  QString name_;
  QDBusConnection bus_{""};
};

QStringList answerTo(const QDBusPendingCall& call) {
  EXPECT_TRUE(waitUntil([&] { return call.isFinished(); }));
  const QDBusPendingReply<QString, QString> reply = call;
  return {reply.argumentAt<0>(), reply.argumentAt<1>()};
}

class PermissionsObjectTest : public testing::Test {
 protected:
  bool hasAsked(size_t count) {
    return waitUntil([&] { return requests.size() == count; });
  }

  QtScheduler& scheduler = TestDesktop::shared().scheduler;
  MessageBus bus{scheduler, sessionBusAddress, 0.1};
  // In this order as in the overlay.
  PermissionsObject object{bus, notifications};
  DBusNotificationCenter notifications{scheduler, bus};
  std::vector<PermissionRequests::Request> requests;
  std::vector<uint64_t> gone;
  const Subscription asks = object.observe([this](const auto& request) { requests.push_back(request); });
  const Subscription ends = object.observeEnd([this](uint64_t number) { gone.push_back(number); });
};

}  // namespace

TEST_F(PermissionsObjectTest, AnswersEachProgramWhatItAskedFor) {
  using enum PermissionAnswer::Behavior;
  Asker first, second;
  const auto one = first.ask({{"session_id", "é"}, {toolInputKey, QString(longestToolInput - 2, 'x')}});
  ASSERT_TRUE(hasAsked(1));
  const auto two = second.ask({{"session_id", "b"}});
  ASSERT_TRUE(hasAsked(2));
  EXPECT_EQ(requests[0].event.at("session_id"), "é");
  EXPECT_EQ(requests[0].event.at(toolInputKey).size(), longestToolInput - 2);
  EXPECT_NE(requests[0].number, requests[1].number);
  object.answer(requests[1].number, {deny, "Non, é"});
  EXPECT_EQ(answerTo(two), (QStringList{"deny", "Non, é"}));
  EXPECT_FALSE(one.isFinished());
  object.answer(requests[0].number, {allow, ""});
  object.answer(requests[0].number, {deny, ""});
  EXPECT_EQ(answerTo(one), (QStringList{"allow", ""}));
  const auto three = first.ask({{"session_id", "c"}});
  ASSERT_TRUE(hasAsked(3));
  object.answer(requests[2].number, {});
  EXPECT_EQ(answerTo(three), (QStringList{"", ""}));
  EXPECT_TRUE(gone.empty());
}

TEST_F(PermissionsObjectTest, TellsOfProgramsThatAreGone) {
  Asker first, second;
  first.ask({{"session_id", "a"}});
  ASSERT_TRUE(hasAsked(1));
  const auto answer = second.ask({{"session_id", "b"}});
  ASSERT_TRUE(hasAsked(2));
  first.leave();
  ASSERT_TRUE(waitUntil([&] { return !gone.empty(); }));
  EXPECT_THAT(gone, ElementsAre(requests[0].number));
  object.answer(requests[0].number, {PermissionAnswer::Behavior::allow, ""});
  object.answer(requests[1].number, {PermissionAnswer::Behavior::allow, ""});
  EXPECT_EQ(answerTo(answer).first(), "allow");
}

TEST_F(PermissionsObjectTest, KeepsTheOrderOfRequestsAndEvents) {
  std::vector<std::string> order;
  const auto both = notifications.observe(
      eventNotification, [&](const StringMap& event) { order.push_back(event.at("number")); });
  const auto asked =
      object.observe([&](const auto& request) { order.push_back(request.event.at("number")); });
  Asker program;
  std::vector<std::string> sent;
  for (int i = 0; i < 100; ++i) {
    sent.push_back(std::to_string(i));
    const TextMap event{{"number", QString::number(i)}};
    i % 3 ? program.tell(event) : void(program.ask(event));
  }
  EXPECT_TRUE(waitUntil([&] { return order.size() == sent.size(); }));
  EXPECT_EQ(order, sent);
}
