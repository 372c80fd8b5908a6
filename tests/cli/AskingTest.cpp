#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>
#include <optional>

#include "ChildProcess.h"
#include "PrivateBus.h"
#include "platform/PermissionRequests.h"

using namespace tarnwick;
using namespace std::chrono_literals;

namespace {

const std::string request =
    R"({"session_id":"s","hook_event_name":"PermissionRequest","tool_name":"Bash","tool_input":)";
const std::string allowed =
    R"({"hookSpecificOutput":{"hookEventName":"PermissionRequest","decision":{"behavior":"allow"}}})"
    "\n";

/// Stands for the overlay on a bus: takes calls, and answers when it is told to.
class AskedOverlay {
 public:
  explicit AskedOverlay(const PrivateBus& bus) {
    constexpr auto flags = static_cast<GDBusConnectionFlags>(
        G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_ =
        g_dbus_connection_new_for_address_sync(bus.address().c_str(), flags, nullptr, nullptr, nullptr);
    g_dbus_connection_set_exit_on_close(connection_, FALSE);
    g_dbus_connection_add_filter(connection_, filter, this, nullptr);
    GVariant* owned = g_dbus_connection_call_sync(connection_, "org.freedesktop.DBus",
        "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", "dev.tarnwick.Tarnwick", 4), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        nullptr);
    g_variant_unref(owned);
  }
  ~AskedOverlay() {
    leave();
    g_object_unref(connection_);
    if (call_) g_object_unref(call_);
  }
  AskedOverlay(const AskedOverlay&) = delete;

  /// Waits for the next call. @return what it says
  StringMap next() {
    std::unique_lock lock(mutex_);
    EXPECT_TRUE(called_.wait_for(lock, 20s, [this] { return call_ != nullptr; }));
    StringMap event;
    GVariant* map = g_variant_get_child_value(g_dbus_message_get_body(call_), 0);
    GVariantIter entries;
    g_variant_iter_init(&entries, map);
    for (const char *key, *value; g_variant_iter_next(&entries, "{&s&s}", &key, &value);) event[key] = value;
    g_variant_unref(map);
    return event;
  }
  void answer(GDBusMessage* reply) {
    g_dbus_connection_send_message(connection_, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(reply);
    const std::lock_guard lock(mutex_);
    g_object_unref(std::exchange(call_, nullptr));
  }
  void answer(const char* behavior, const char* message = "") {
    GDBusMessage* reply = g_dbus_message_new_method_reply(call_);
    g_dbus_message_set_body(reply, g_variant_new("(ss)", behavior, message));
    answer(reply);
  }
  void fail(const char* error) { answer(g_dbus_message_new_method_error_literal(call_, error, "")); }
  void leave() { g_dbus_connection_close_sync(connection_, nullptr, nullptr); }

 private:
  static GDBusMessage* filter(GDBusConnection*, GDBusMessage* message, gboolean incoming, void* self) {
    if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
      return message;
    auto& overlay = *static_cast<AskedOverlay*>(self);
    EXPECT_STREQ(g_dbus_message_get_path(message), "/dev/tarnwick/permissions");
    EXPECT_STREQ(g_dbus_message_get_member(message), "Ask");
    const std::lock_guard lock(overlay.mutex_);
    overlay.call_ = message;
    overlay.called_.notify_all();
    return nullptr;
  }

  GDBusConnection* connection_;
  std::mutex mutex_;
  std::condition_variable called_;
  GDBusMessage* call_ = nullptr;
};

class AskingTest : public testing::Test {
 protected:
  std::unique_ptr<ChildProcess> hook(const std::string& event) const {
    return std::make_unique<ChildProcess>(std::vector<std::string>{TARNWICK_PROGRAM, "--hook"},
        std::vector{"DBUS_SESSION_BUS_ADDRESS=" + bus.address()}, event);
  }

  const PrivateBus bus;
  BusListener listener{bus};
};

TEST_F(AskingTest, PrintsWhatTheOverlayAnswers) {
  AskedOverlay overlay(bus);
  const struct {
    const char *behavior, *message;
    std::string printed;
  } cases[] = {
      {"allow", "", allowed},
      {"deny", "\"No\", é",
          R"({"hookSpecificOutput":{"hookEventName":"PermissionRequest","decision":)"
          R"({"behavior":"deny","message":"\"No\", é"}}})"
          "\n"},
      {"", "", ""},
      {"Allow", "", ""},
  };
  for (const auto& one : cases) {
    const auto relay = hook(request + R"({"command":"a\u0000b\ud83d\ude00","n":1.50}})");
    const StringMap event = overlay.next();
    EXPECT_EQ(event.at("tool_detail"), "a\uFFFDb😀") << "the bus takes no zero";
    EXPECT_EQ(event.at(toolInputKey), R"({"command":"a\u0000b😀","n":1.50})");
    EXPECT_TRUE(event.contains("process"));
    overlay.answer(one.behavior, one.message);
    const auto result = relay->wait();
    EXPECT_EQ(result.output, one.printed);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.status, 0);
  }
  EXPECT_TRUE(listener.waitFor(0).empty()) << "it is not told twice";
}

TEST_F(AskingTest, LeavesItToTheTerminalWhenSomethingEnds) {
  for (const char* what : {"overlay", "bus", "reader", "broken"}) {
    SCOPED_TRACE(what);
    PrivateBus own;
    AskedOverlay overlay(own);
    // Nobody reads what it prints, or waits for its end.
    const std::string reader = what == std::string("reader") ? "head -c0" : "cat";
    ChildProcess relay({"sh", "-c", "\"$0\" --hook | " + reader, TARNWICK_PROGRAM},
        {"DBUS_SESSION_BUS_ADDRESS=" + own.address()}, request + "{\"command\":\"make\"}}");
    if (what != reader && what != std::string("reader")) overlay.next();
    if (what == std::string("overlay")) overlay.leave();
    if (what == std::string("bus")) own.signal(SIGKILL);
    if (what == std::string("broken")) overlay.fail("org.freedesktop.DBus.Error.Failed");
    const auto result = relay.wait();
    EXPECT_EQ(result.output + result.error, "");
    EXPECT_EQ(result.status, 0);
  }
}

TEST_F(AskingTest, TellsTheEventAsAnyOtherWhereNobodyIsToBeAsked) {
  const auto post = [&](const std::string& event) {
    const auto result = hook(event)->wait();
    EXPECT_EQ(result.output + result.error, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_LT(result.duration, 3s);
  };
  const std::string input = "{\"command\":\"make\"}}";
  post(request + input);
  std::optional<AskedOverlay> overlay(std::in_place, bus);
  const auto relay = hook(request + input);
  overlay->next();
  overlay->fail("org.freedesktop.DBus.Error.UnknownObject");
  EXPECT_EQ(relay->wait().output, "") << "of an earlier version";
  // These do not ask it.
  post(request + R"({"command":")" + std::string(longestToolInput, 'x') + "\"}}");
  post(request + "7}");
  post(R"({"session_id":"s","hook_event_name":"PreToolUse","tool_name":"Bash","tool_input":)" + input);
  post(R"({"session_id":"s","hook_event_name":"PermissionRequest","tool_name":"ExitPlanMode","tool_input":)" +
       input);
  const auto& heard = listener.waitFor(6);
  ASSERT_EQ(heard.size(), 6u);
  for (const auto& signal : heard) EXPECT_FALSE(signal.map.contains(toolInputKey));
  EXPECT_EQ(heard[1].map.at("tool_detail"), "make");
}

}  // namespace
