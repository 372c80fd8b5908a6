#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libecal/libecal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/LocalTime.h"
#include "platform/linux/CalendarClient.h"
#include "support/TemporaryFolder.h"

// The calendar module against the real calendar service, in a session and a home of its own.
namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::chrono::seconds patience{60};

class EvolutionClientTest : public testing::Test {
 protected:
  EvolutionClientTest() {
    void* module = ::dlopen(TARNWICK_CALENDAR_MODULE, RTLD_NOW);
    EXPECT_TRUE(module) << ::dlerror();
    const auto make = reinterpret_cast<MakeCalendarClient*>(::dlsym(module, makeCalendarClientName));
    client.reset(
        make({.onAccess = [this](bool granted) { tell([&] { access = granted; }); },
              .onEvents =
                  [this](std::vector<CalendarEvent> events) { tell([&] { known = describe(events); }); }}));
    client->follow(today, startOfDay(today, 2));
  }

  void tell(const std::function<void()>& change) {
    const std::lock_guard lock(mutex);
    change();
    changed.notify_all();
  }
  /// Waits until the client has told exactly these events.
  void expect(const std::vector<std::string>& events) {
    std::unique_lock lock(mutex);
    changed.wait_for(lock, patience, [&] { return access && known && *known == events; });
    EXPECT_EQ(access, true);
    EXPECT_EQ(known, events);
  }
  /// Hours since today's midnight, and the title.
  std::vector<std::string> describe(const std::vector<CalendarEvent>& events) const {
    std::vector<std::string> texts;
    for (const CalendarEvent& event : events) {
      char hours[64];
      std::snprintf(hours, sizeof hours, "%g-%g%s ", (event.start - today) / 3600, (event.end - today) / 3600,
                    event.allDay ? " whole days" : "");
      texts.push_back(hours + event.title);
    }
    std::sort(texts.begin(), texts.end());
    return texts;
  }

  /// The local day, so many days after today, as calendars write it.
  std::string day(int later) const {
    const auto seconds = static_cast<time_t>(startOfDay(today, later).secondsSince1970);
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    char text[16];
    std::strftime(text, sizeof text, "%Y%m%d", &parts);
    return text;
  }
  void add(const std::string& uid, const std::string& lines) {
    const std::string text =
        "BEGIN:VEVENT\r\nUID:" + uid + "\r\nSUMMARY:" + uid + "\r\n" + lines + "\r\nEND:VEVENT\r\n";
    ICalComponent* component = i_cal_component_new_from_string(text.c_str());
    EXPECT_TRUE(e_cal_client_create_object_sync(calendar(), component, E_CAL_OPERATION_FLAG_NONE, nullptr,
                                                nullptr, nullptr));
    g_object_unref(component);
  }
  void remove(const std::string& uid) {
    EXPECT_TRUE(e_cal_client_remove_object_sync(calendar(), uid.c_str(), nullptr, E_CAL_OBJ_MOD_ALL,
                                                E_CAL_OPERATION_FLAG_NONE, nullptr, nullptr));
  }
  /// The test's own way to the user's calendar.
  static ECalClient* calendar() {
    static EClient* const client = [] {
      ESourceRegistry* registry = e_source_registry_new_sync(nullptr, nullptr);
      ESource* source = e_source_registry_ref_builtin_calendar(registry);
      return e_cal_client_connect_sync(source, E_CAL_CLIENT_SOURCE_TYPE_EVENTS, 10, nullptr, nullptr);
    }();
    return E_CAL_CLIENT(client);
  }

  const Date today = startOfDay(Date::systemNow());
  std::mutex mutex;
  std::condition_variable changed;
  std::optional<bool> access;
  std::optional<std::vector<std::string>> known;
  /// Ends first: its thread uses the rest.
  std::unique_ptr<CalendarClient> client;
};

TEST_F(EvolutionClientTest, FollowsTheCalendar) {
  expect({});
  const std::string now = day(0), next = day(1);
  add("floating", "DTSTART:" + now + "T150000\r\nDTEND:" + now + "T160000");
  expect({"15-16 floating"});
  add("zoned", "DTSTART;TZID=Asia/Dubai:" + now + "T180000\r\nDTEND;TZID=Asia/Dubai:" + now + "T190000");
  expect({"15-16 floating", "19.5-20.5 zoned"});
  remove("zoned");
  add("days", "DTSTART;VALUE=DATE:" + now + "\r\nDTEND;VALUE=DATE:" + next);
  expect({"0-24 whole days days", "15-16 floating"});
  remove("floating");
  add("yesterday", "DTSTART;VALUE=DATE:" + day(-1) + "\r\nDTEND;VALUE=DATE:" + now);
  add("cancelled", "STATUS:CANCELLED\r\nDTSTART:" + now + "T150000\r\nDTEND:" + now + "T160000");
  add("daily", "RRULE:FREQ=DAILY\r\nDTSTART:" + day(-3) + "T100000\r\nDTEND:" + day(-3) + "T103000");
  // What ends as the first day begins is for the reader to leave out.
  expect({"-24-0 whole days yesterday", "0-24 whole days days", "10-10.5 daily", "34-34.5 daily"});

  client->follow(startOfDay(today, 1), startOfDay(today, 2));
  expect({"0-24 whole days days", "34-34.5 daily"});
}

}  // namespace
}  // namespace tarnwick

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Everything that the calendar service keeps and starts stays within this test.
  if (!std::getenv("TARNWICK_CALENDAR_TEST")) {
    const tarnwick::TemporaryFolder home;
    for (const char* name :
         {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
      const std::string folder = home.path() + '/' + name;
      ::mkdir(folder.c_str(), 0700);
      ::setenv(name, folder.c_str(), 1);
    }
    ::setenv("TZ", "Asia/Kolkata", 1);
    ::setenv("TARNWICK_CALENDAR_TEST", "1", 1);
    const std::string command = std::string("exec timeout 240 dbus-run-session -- ") + argv[0];
    return std::system(command.c_str()) == 0 ? 0 : 1;
  }
  return RUN_ALL_TESTS();
}
