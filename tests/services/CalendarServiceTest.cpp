#include "services/CalendarService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/LocalTime.h"
#include "support/ForcedLanguage.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CalendarServiceTest : public testing::Test {
 protected:
  CalendarServiceTest() {
    calendar.onBanner = [this](const Banner& banner, double seconds) {
      EXPECT_EQ(banner.icon, "calendar");
      EXPECT_EQ(banner.tint, colors::teal);
      EXPECT_EQ(banner.crab, std::nullopt);
      EXPECT_EQ(seconds, 6);
      banners.push_back(banner.title + ": " + banner.subtitle);
    };
  }

  Date now() const { return desktop.scheduler.now(); }
  void pass(double seconds) { desktop.scheduler.advance(seconds); }
  CalendarEvent event(const std::string& id, double inSeconds, double length = 1800) const {
    return {id, id, now() + inSeconds, now() + inSeconds + length, false, colors::teal};
  }
  std::vector<std::string> titles() const {
    std::vector<std::string> all;
    for (const CalendarItem& each : *calendar.events) all.push_back(each.title);
    return all;
  }
  void start() {
    calendar.start();
    desktop.calendars.setAccess(true);
  }

  const ForcedLanguage english{"en"};
  MemoryDesktop desktop;
  CalendarService calendar{desktop.calendars, desktop.scheduler};
  std::vector<std::string> banners;
};

TEST_F(CalendarServiceTest, ListsTodayAndTomorrowByStart) {
  const double tomorrowsEnd = startOfDay(now(), 2) - now();
  start();
  desktop.calendars.set({event("tomorrow", tomorrowsEnd - 60), event("later", tomorrowsEnd),
      event("next", 600), event("under way", -600), event("same", 600), event("over", -1800, 1799)});
  EXPECT_THAT(titles(), ElementsAre("under way", "next", "same", "tomorrow"));

  std::vector<CalendarEvent> many;
  for (int i = 20; i > 0; --i) many.push_back(event(std::to_string(i), 600 + i));
  desktop.calendars.set(many);
  EXPECT_EQ(calendar.events->size(), 12u);
  EXPECT_EQ(titles().back(), "12");

  // One that repeats all the time does not hide the others.
  many.resize(2);
  for (int i = 0; i < 200; ++i) many.push_back(event("often", 60 + i * 60, 30));
  many.push_back(event("real", 10'000));
  desktop.calendars.set(many);
  EXPECT_EQ(calendar.events->size(), 12u);
  EXPECT_EQ(titles().back(), "real");
  pass(95);
  EXPECT_EQ(calendar.events->size(), 12u) << "others move up";
}

TEST_F(CalendarServiceTest, FollowsTheWallClock) {
  start();
  const double midnight = startOfDay(now(), 1) - now();
  desktop.calendars.set({event("in two days", midnight + 86'400 + 3600), event("soon", 1000)});
  EXPECT_THAT(titles(), ElementsAre("soon"));
  desktop.scheduler.setClock(800);
  pass(0);
  EXPECT_EQ(banners.size(), 1u) << "the machine has slept";
  const int wakeUps = desktop.scheduler.wakeUps();
  pass(midnight - 800);
  EXPECT_THAT(titles(), ElementsAre("in two days")) << "a new day";
  EXPECT_LE(desktop.scheduler.wakeUps() - wakeUps, 2) << "the event's end, and midnight";
}

TEST_F(CalendarServiceTest, MakesItemsAndDropsThemWhenTheyHaveEnded) {
  CalendarEvent plain = event("x", 0), half = event("x", 0.5), untitled = event("x", 1);
  untitled.title.clear();
  start();
  desktop.calendars.set({plain, half, untitled});
  ASSERT_EQ(calendar.events->size(), 3u);
  const auto& items = *calendar.events;
  EXPECT_EQ(items[0], (CalendarItem{"x1700000000.0", "x", plain.start, plain.end, false, colors::teal}));
  EXPECT_EQ(items[1].id, "x1700000000.5");
  EXPECT_EQ(items[2].title, "Untitled");
  const ForcedLanguage french("fr");
  calendar.reload();
  EXPECT_EQ(titles().back(), "Sans titre");
  desktop.calendars.set({event("short", -60, 80), event("long", -60, 900)});
  EXPECT_THAT(titles(), ElementsAre("short", "long"));
  pass(30);
  EXPECT_THAT(titles(), ElementsAre("long"));
}

TEST_F(CalendarServiceTest, AnnouncesFiveMinutesAhead) {
  const struct {
    double wait;
    const char* minutes;
  } cases[] = {{299, "4"}, {40, "1"}, {300, "5"}, {301, nullptr}, {0, nullptr}, {-1, nullptr}, {119.9, "1"},
      {299.99, "5"}};
  start();
  for (const auto& [wait, minutes] : cases) {
    banners.clear();
    const CalendarEvent next = event("event in " + std::to_string(wait), wait);
    desktop.calendars.set({next});
    if (!minutes) {
      EXPECT_THAT(banners, IsEmpty()) << wait;
    } else {
      EXPECT_THAT(
          banners, ElementsAre(next.title + ": Starts in " + minutes + " min · " + shortTime(next.start)));
    }
  }
  const ForcedLanguage french("fr");
  banners.clear();
  const CalendarEvent next = event("réunion", 299);
  desktop.calendars.set({next});
  EXPECT_THAT(banners, ElementsAre("réunion: Commence dans 4 min · " + shortTime(next.start)));
}

TEST_F(CalendarServiceTest, AnnouncesEachOccurrenceOnce) {
  CalendarEvent first = event("standup", 310), second = first, allDay = event("holiday", 200);
  second.start = first.start + 600;
  second.end = first.end + 600;
  allDay.allDay = true;
  start();
  desktop.calendars.set({first, second, allDay});
  EXPECT_THAT(titles(), ElementsAre("holiday", "standup", "standup"));
  EXPECT_EQ(banners.size(), 0u);
  pass(30);
  EXPECT_EQ(banners.size(), 1u) << "five minutes ahead";
  desktop.calendars.set({first, allDay, second});
  pass(300);
  EXPECT_EQ(banners.size(), 1u);
  pass(400);
  EXPECT_EQ(banners.size(), 2u);
}

TEST_F(CalendarServiceTest, TheDemonstrationKeepsItsEvents) {
  start();
  desktop.calendars.set({event("mine", 600)});
  calendar.showcaseFill();
  ASSERT_THAT(titles(), ElementsAre("Design review", "Workout"));
  EXPECT_EQ(calendar.events->front().start - startOfDay(now()), 15 * 3600);
  desktop.calendars.set({event("other", 600)});
  EXPECT_THAT(titles(), ElementsAre("Design review", "Workout"));
  calendar.showcaseEnd();
  EXPECT_THAT(titles(), ElementsAre("other"));

  desktop.calendars.setAccess(false);
  desktop.calendars.set({event("unseen", 60)});
  EXPECT_THAT(titles(), IsEmpty()) << "without access";
  calendar.showcaseFill();
  EXPECT_TRUE(calendar.authorized);
  calendar.showcaseEnd();
  EXPECT_FALSE(calendar.authorized);
  EXPECT_THAT(titles(), IsEmpty());
}

}  // namespace
}  // namespace tarnwick
