#include "linux/calendar/EvolutionCalendars.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "base/LocalTime.h"
#include "linux/process/QtScheduler.h"
#include "support/BusThreadEnd.h"
#include "support/TemporaryFolder.h"

// The calendars, with the real calendar service in a session and a home of its own.
namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAreArray;
using Texts = std::vector<std::string>;

constexpr int patience = 6000;

/// Hours since midnight of `today`, and the title.
Texts describe(const std::vector<CalendarEvent>& events, Date today) {
  Texts texts;
  for (const CalendarEvent& event : events) {
    char hours[64];
    std::snprintf(hours, sizeof hours, "%g-%g%s ", (event.start - today) / 3600, (event.end - today) / 3600,
        event.allDay ? " whole days" : "");
    texts.push_back(hours + event.title);
  }
  return texts;
}

/// The local day, so many days after another, as calendars write it.
std::string day(Date today, int later) {
  const auto seconds = static_cast<time_t>(startOfDay(today, later).secondsSince1970);
  std::tm parts{};
  ::localtime_r(&seconds, &parts);
  char text[16];
  std::strftime(text, sizeof text, "%Y%m%d", &parts);
  return text;
}

std::string written(const std::string& uid, const std::string& lines) {
  return "BEGIN:VEVENT\r\nUID:" + uid + "\r\nSUMMARY:" + uid + "\r\n" + lines + "\r\nEND:VEVENT\r\n";
}

class CalendarReaderTest : public testing::Test {
 protected:
  /// What the next two days hold.
  CalendarReading read(const Texts& components) {
    return loadCalendarReader(TARNWICK_MODULES)(components, today, startOfDay(today, 2));
  }
  // A Wednesday in the local time zone, which is 5.5 hours ahead.
  const Date today = startOfDay({1'773'210'600});
};

TEST_F(CalendarReaderTest, TellsWhenEventsOccur) {
  ASSERT_EQ(day(today, 0), "20260311");
  const struct {
    const char* lines;
    Texts occurrences;
  } cases[] = {
      {"DTSTART:20260311T150000\r\nDTEND:20260311T160000", {"15-16 e"}},
      {"DTSTART:20260311T150000\r\nDURATION:PT90M", {"15-16.5 e"}},
      {"DTSTART:20260311T150000", {"15-15 e"}},
      {"DTSTART:20260311T093000Z\r\nDTEND:20260311T100000Z", {"15-15.5 e"}},
      {"DTSTART;TZID=Asia/Dubai:20260311T180000\r\nDTEND;TZID=Asia/Dubai:20260311T190000", {"19.5-20.5 e"}},
      {"DTSTART;VALUE=DATE:20260311", {"0-24 whole days e"}},
      {"DTSTART;VALUE=DATE:20260310\r\nDTEND;VALUE=DATE:20260313", {"-24-48 whole days e"}},
      // At the span's edges.
      {"DTSTART:20260309T120000\r\nDTEND:20260311T010000", {"-36-1 e"}},
      {"DTSTART:20260312T233000\r\nDTEND:20260313T020000", {"47.5-50 e"}},
      {"DTSTART:20260313T000000\r\nDTEND:20260313T020000", {}},
      {"DTSTART:20260310T220000\r\nDTEND:20260310T233000", {}},
      // Repeating.
      {"DTSTART:20200101T100000\r\nDTEND:20200101T103000\r\nRRULE:FREQ=DAILY", {"10-10.5 e", "34-34.5 e"}},
      {"DTSTART:20200101T100000\r\nDTEND:20200101T103000\r\nRRULE:FREQ=DAILY\r\nEXDATE:20260311T100000",
          {"34-34.5 e"}},
      {"DTSTART:20200101T100000\r\nDTEND:20200101T103000\r\nRRULE:FREQ=DAILY;UNTIL=20260311T120000",
          {"10-10.5 e"}},
      {"DTSTART;VALUE=DATE:20260304\r\nRRULE:FREQ=WEEKLY", {"0-24 whole days e"}},
      {"DTSTART:20260301T100000\r\nRDATE:20260312T110000", {"35-35 e"}},
      // Of the zone's own clock, which was put forward on 8 March.
      {"DTSTART;TZID=America/New_York:20260301T053000\r\nRRULE:FREQ=DAILY;COUNT=11", {"15-15 e"}},
      {"STATUS:CANCELLED\r\nDTSTART:20260311T150000\r\nDTEND:20260311T160000", {}},
      {"DESCRIPTION:at no time", {}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(describe(read({written("e", each.lines)}).events, today), each.occurrences) << each.lines;
  }
}

TEST_F(CalendarReaderTest, PutsChangedOccurrencesInTheirPlace) {
  const std::string rule = written("e", "DTSTART:20260301T100000\r\nDURATION:PT1H\r\nRRULE:FREQ=DAILY");
  const auto changed = [](const char* lines) { return written("e", lines); };
  const struct {
    std::string change;
    Texts occurrences;
  } cases[] = {
      {changed("RECURRENCE-ID:20260311T100000\r\nDTSTART:20260311T170000\r\nDURATION:PT2H"),
          {"17-19 e", "34-35 e"}},
      {changed("RECURRENCE-ID:20260311T100000\r\nDTSTART:20260320T100000"), {"34-35 e"}},
      {changed("RECURRENCE-ID:20260311T100000\r\nDTSTART:20260311T100000\r\nSTATUS:CANCELLED"), {"34-35 e"}},
      {changed("DTSTART:20260311T100000"), {"10-10 e"}},  // a later word on the whole event
  };
  for (const auto& each : cases) {
    for (const Texts& components :
        {Texts{rule, each.change}, Texts{rule, rule, each.change}, Texts{rule, each.change, each.change}}) {
      EXPECT_THAT(describe(read(components).events, today), UnorderedElementsAreArray(each.occurrences))
          << each.change;
    }
  }
}

TEST_F(CalendarReaderTest, AsksForWhatItWouldHaveToKnow) {
  const std::string odd = written("odd", "DTSTART;TZID=Office:20260311T100000");
  CalendarReading reading =
      read({odd, written("often", "DTSTART:20260301T100000\r\nRRULE:FREQ=DAILY"), "no calendar", ""});
  EXPECT_THAT(reading.repeating, ElementsAre("often"));
  EXPECT_THAT(reading.unknownZones, ElementsAre("Office"));

  const char zone[] =
      "BEGIN:VTIMEZONE\r\nTZID:Office\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
      "TZOFFSETFROM:+0400\r\nTZOFFSETTO:+0400\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
  reading = read({odd, zone});
  EXPECT_THAT(describe(reading.events, today), ElementsAre("11.5-11.5 odd"));
  EXPECT_TRUE(reading.unknownZones.empty());
}

TEST_F(CalendarReaderTest, HasBounds) {
  const std::string real = written("real", "DTSTART:20260311T150000");
  const char* const rules[] = {"RRULE:FREQ=SECONDLY", "RRULE:FREQ=MINUTELY\r\nDURATION:P20000D",
      "RRULE:FREQ=SECONDLY;COUNT=2000000000", "RRULE:FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30"};
  for (const char* rule : rules) {
    const double start = Date::systemNow().secondsSince1970;
    const CalendarReading reading =
        read({written("all the time", std::string("DTSTART:19800101T000000\r\n") + rule), real});
    EXPECT_LE(reading.events.size(), 5000u) << rule;
    EXPECT_EQ(reading.events.back().identifier, "real") << rule;
    EXPECT_LT(Date::systemNow().secondsSince1970 - start, 5) << rule;
  }
}

class EvolutionCalendarsTest : public testing::Test {
 protected:
  EvolutionCalendarsTest() {
    calendars.requestAccess([this](bool granted) { access = granted; });
    subscription = calendars.observe([this] { ++changes; });
    bus.open();
    calendars.connect();
  }

  static bool waitUntil(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(patience);
    QTimer poll;
    poll.start(10);
    while (!condition() && !deadline.hasExpired()) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return condition();
  }
  Texts events() {
    Texts texts = describe(calendars.events(from, startOfDay(today, 2)), today);
    std::sort(texts.begin(), texts.end());
    return texts;
  }
  /// Waits until there are exactly these events.
  void expect(const Texts& expected) {
    waitUntil([&] { return access && changes > 0 && events() == expected; });
    EXPECT_EQ(events(), expected);
  }

  // The test's own way to the user's calendar.
  QVariantList call(const QString& service, const QString& path, const QString& interface,
      const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(message);
    EXPECT_EQ(reply.errorMessage(), QString()) << method.toStdString();
    return reply.arguments();
  }
  void callCalendar(const QString& method, const QVariantList& arguments) {
    const QVariantList place = call(EvolutionCalendar::service,
        "/org/gnome/evolution/dataserver/CalendarFactory", "org.gnome.evolution.dataserver.CalendarFactory",
        "OpenCalendar", {"system-calendar"});
    const QString path = place.value(0).toString(), service = place.value(1).toString();
    const QString interface = "org.gnome.evolution.dataserver.Calendar";
    call(service, path, interface, "Open", {});
    call(service, path, interface, method, arguments);
  }
  void add(const std::string& uid, const std::string& lines) {
    callCalendar("CreateObjects", {QStringList{QString::fromStdString(written(uid, lines))}, 0u});
  }
  void change(const std::string& uid, const std::string& lines) {
    callCalendar(
        "ModifyObjects", {QStringList{QString::fromStdString(written(uid, lines))}, QString("this"), 0u});
  }

  const Date today = startOfDay(Date::systemNow());
  Date from = today;
  QtScheduler scheduler;
  MessageBus bus{scheduler, sessionBusAddress};
  EvolutionCalendars calendars{
      scheduler, bus, true, [] { return loadCalendarReader(TARNWICK_MODULES); }, 0.1};
  Subscription subscription;
  std::optional<bool> access;
  int changes = 0;
};

TEST_F(EvolutionCalendarsTest, FollowsTheUsersCalendars) {
  ASSERT_TRUE(waitUntil([this] { return access == true; }));
  EXPECT_EQ(events(), Texts());
  const std::string now = day(today, 0), next = day(today, 1);
  add("floating", "DTSTART:" + now + "T150000\r\nDTEND:" + now + "T160000");
  expect({"15-16 floating"});
  add("days", "DTSTART;VALUE=DATE:" + now + "\r\nDTEND;VALUE=DATE:" + next);
  expect({"0-24 whole days days", "15-16 floating"});
  change("floating", "DTSTART:" + now + "T170000\r\nDTEND:" + now + "T173000");
  expect({"0-24 whole days days", "17-17.5 floating"});

  add("daily", "RRULE:FREQ=DAILY\r\nDTSTART:" + day(today, -3) + "T100000\r\nDURATION:PT30M");
  expect({"0-24 whole days days", "10-10.5 daily", "17-17.5 floating", "34-34.5 daily"});
  // Moved out of what is looked at, one of them is seen nowhere.
  change(
      "daily", "RECURRENCE-ID:" + now + "T100000\r\nDTSTART:" + day(today, 20) + "T100000\r\nDURATION:PT30M");
  expect({"0-24 whole days days", "17-17.5 floating", "34-34.5 daily"});
  from = startOfDay(today, 1);
  expect({"34-34.5 daily"});
  from = today;

  // A calendar of the user's own, switched off and on.
  const std::string sources = std::getenv("XDG_CONFIG_HOME") + std::string("/evolution/sources/");
  const auto describeCalendar = [&](bool enabled) {
    std::ofstream(sources + "other.source")
        << "[Data Source]\nDisplayName=Other\nEnabled=" << (enabled ? "true" : "false")
        << "\nParent=local-stub\n\n[Calendar]\nBackendName=local\nColor=#ff0000\n";
  };
  const auto haveRed = [this] {
    const auto all = calendars.events(today, startOfDay(today, 2));
    return std::any_of(all.begin(), all.end(), [](const auto& event) {
      return event.color == Color{1, 0, 0};
    });
  };
  const std::string folder = std::getenv("XDG_DATA_HOME") + std::string("/evolution/calendar/other");
  ASSERT_EQ(::mkdir(folder.c_str(), 0700), 0);
  std::ofstream(folder + "/calendar.ics")
      << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:test\r\n"
      << written("red", "DTSTART:" + now + "T110000") << "END:VCALENDAR\r\n";
  describeCalendar(true);
  EXPECT_TRUE(waitUntil(haveRed));
  expect({"0-24 whole days days", "11-11 red", "17-17.5 floating", "34-34.5 daily"});
  describeCalendar(false);
  expect({"0-24 whole days days", "17-17.5 floating", "34-34.5 daily"});

  // The service dies and is started again, with the same calendars.
  const uint process =
      QDBusConnection::sessionBus().interface()->servicePid(EvolutionCalendar::service).value();
  ASSERT_EQ(::kill(static_cast<pid_t>(process), SIGKILL), 0);
  ASSERT_TRUE(waitUntil([&] {
    const auto other = QDBusConnection::sessionBus().interface()->servicePid(EvolutionCalendar::service);
    return other.isValid() && other.value() != process;
  })) << "nobody asked for the calendars again";
  add("later", "DTSTART:" + now + "T200000");
  expect({"0-24 whole days days", "17-17.5 floating", "20-20 later", "34-34.5 daily"});
}

}  // namespace
}  // namespace tarnwick

static const tarnwick::BusThreadEnd busThreadEnd;

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
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
