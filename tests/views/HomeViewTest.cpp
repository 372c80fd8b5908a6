#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "base/LocalTime.h"
#include "support/ForcedLanguage.h"
#include "views/EventRow.h"
#include "views/NotchStage.h"
#include "views/Scrubber.h"

namespace tarnwick {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr double infinity = std::numeric_limits<double>::infinity();

/// The home page with a track of 200 s that plays, from 50 s on.
struct HomeStage : NotchStage {
  HomeStage() {
    desktop.folders.root.write("modules/MediaBridge.so", "");
    model.media.start(model.settings);
    model.media.title = "Song";
    model.media.artist = "Singer";
    playFrom(50, 200);
    withAnimation(notchOpen, [&] { model.expand(Tab::home); });
    settle();
    told();
  }

  void playFrom(double elapsed, double duration) {
    model.media.duration = duration;
    model.media.elapsed = elapsed;
    model.media.timestamp = scheduler.now();
    model.media.playing = true;
  }
  /// What the player was told since the last time.
  std::string told() { return std::exchange(desktop.processes.input, ""); }
  Rect frame(const char* control) { return inspect.control(control)->frame(); }
  Point onBar(double fraction) {
    const Rect bar = frame("Position");
    return {bar.x + fraction * bar.width, bar.midY()};
  }
  /// Where the knob's middle is, as a fraction of the bar.
  double knob() {
    const auto circles = inspect.all([](const auto& found) {
      return found.kind() == "Shape" && std::abs(found.targetFrame().width - 12) < 0.1 &&
             std::abs(found.targetFrame().height - 12) < 0.1;
    });
    const Rect bar = frame("Position");
    return circles.empty() ? -1 : (circles.back().frame().midX() - bar.x) / bar.width;
  }
};

TEST(Scrubber, WritesTimes) {
  const struct {
    double seconds;
    const char* text;
  } cases[] = {{0, "0:00"}, {59.9, "0:59"}, {60, "1:00"}, {187, "3:07"}, {3600, "60:00"}, {4503.5, "75:03"},
      {-4, "0:00"}, {std::nan(""), "0:00"}, {infinity, "0:00"}, {-infinity, "0:00"}};
  for (const auto& c : cases) EXPECT_EQ(trackTime(c.seconds), c.text) << c.seconds;
  EXPECT_THAT(trackTime(1e300), Not(testing::HasSubstr("-")));
}

TEST(Scrubber, ShowsWhereTheTrackIs) {
  const struct {
    double elapsed, duration;
    const char *time, *left;
    double knob;
  } cases[] = {{50, 200, "0:50", "-2:30", 0.25}, {260, 200, "3:20", "-0:00", 1}, {70, 0, "1:10", "-0:00", 1},
      {0, -1, "0:00", "-0:00", 0}, {0.5, 0.9, "0:00", "-0:00", 0.5},
      {std::nan(""), infinity, "0:00", "-0:00", 0}};
  HomeStage stage;
  for (const auto& c : cases) {
    stage.playFrom(c.elapsed, c.duration);
    stage.model.media.playing = false;
    stage.settle();
    EXPECT_THAT(stage.inspect.texts(), AllOf(Contains(c.time), Contains(c.left))) << c.elapsed;
    EXPECT_NEAR(stage.knob(), c.knob, 1e-6) << c.elapsed << " of " << c.duration;
  }
  stage.playFrom(50, 200);
  stage.play(10.1);
  EXPECT_THAT(stage.inspect.texts(), Contains("1:00"));
}

TEST(Scrubber, SeeksOnceAtTheEndOfADrag) {
  HomeStage stage;
  stage.inspect.hover(stage.onBar(0.5));
  auto& input = stage.scene.input();
  input.pressed(stage.onBar(0.5));
  input.moved({-1000, 600});
  stage.play(1);
  EXPECT_NEAR(stage.knob(), 0, 1e-6);
  input.moved(stage.onBar(0.75));
  stage.play(3);
  EXPECT_NEAR(stage.knob(), 0.75, 1e-6) << "also while the track goes on";
  EXPECT_THAT(stage.inspect.texts(), AllOf(Contains("2:30"), Contains("-0:50")));
  EXPECT_EQ(stage.told(), "");
  input.released(stage.onBar(0.75));
  EXPECT_EQ(stage.told(), "seek 150.0\n");
  stage.play(1.1);
  EXPECT_THAT(stage.inspect.texts(), Contains("2:31"));

  stage.inspect.tap(stage.onBar(0.25));
  EXPECT_EQ(stage.told(), "seek 50.0\n");
  input.pressed(stage.onBar(0.9));
  stage.play(0.1);
  input.key({.key = ui::Key::escape});
  stage.play(0.6);
  EXPECT_EQ(stage.told(), "") << "it was called off";
  EXPECT_LT(stage.knob(), 0.3);
  stage.inspect.scroll(*stage.inspect.control("Position"), {0, -48});
  EXPECT_THAT(stage.told(), testing::StartsWith("seek 4"));

  for (const bool endless : {true, false}) {
    stage.playFrom(50, endless ? 0 : 200);
    stage.model.media.canSeek = endless;
    stage.settle();
    stage.inspect.tap(stage.onBar(0.5));
    EXPECT_EQ(stage.told(), "") << (endless ? "what has no end has no places" : "the player does not seek");
  }
}

TEST(Scrubber, RepaintsNothingElse) {
  HomeStage stage;
  stage.model.media.playing = false;
  stage.settle();
  stage.playFrom(10, 20);
  stage.settle();
  const Rect page = stage.inspect.control("Open the source app")->frame().united(stage.frame("Next"));
  stage.scene.takeDamage();
  stage.play(2);
  double area = 0;
  for (const Rect& part : stage.scene.takeDamage()) {
    EXPECT_FALSE(part.intersects(stage.frame("Open the source app"))) << "the cover";
    EXPECT_FALSE(part.intersects(stage.frame("Next"))) << "the buttons";
    area += part.width * part.height;
  }
  EXPECT_GT(area, 0);
  EXPECT_LT(area, page.width * page.height / 3);
}

TEST(HomeView, DrivesThePlayer) {
  HomeStage stage;
  const struct {
    const char *control, *command;
  } buttons[] = {{"Previous", "cmd 5\n"}, {"Pause", "cmd 2\n"}, {"Play", "cmd 2\n"}, {"Next", "cmd 4\n"}};
  for (const auto& button : buttons) {
    const auto found = stage.inspect.control(button.control);
    ASSERT_TRUE(found) << button.control;
    stage.inspect.tap(*found);
    stage.settle();
    EXPECT_EQ(stage.told(), button.command);
  }
  stage.model.media.appBundleURL = "/player.desktop";
  stage.inspect.tap(*stage.inspect.control("Open the source app"));
  EXPECT_THAT(stage.desktop.applications.started, ElementsAre("/player.desktop"));
  const double playing = stage.frame("Open the source app").width;
  stage.inspect.leave();
  stage.model.media.playing = false;
  stage.settle();
  stage.model.media.title = "";
  stage.settle();
  EXPECT_GT(playing, 0);
  EXPECT_FALSE(stage.inspect.control("Position"));
  EXPECT_THAT(stage.inspect.texts(), Contains("Nothing playing"));
}

TEST(HomeView, TheCoverFliesBetweenWingAndCard) {
  NotchStage stage;
  stage.model.media.showcaseTrack(0);
  stage.settle();
  const auto covers = [&](bool leaving) {
    return stage.inspect.all(
        [=](const auto& found) { return found.kind() == "Match" && found.isLeaving() == leaving; });
  };
  const auto cover = [&] { return covers(false).back().frame(); };
  const Rect inWing = cover();
  EXPECT_NEAR(inWing.width, 22, 0.1);
  withAnimation(notchOpen, [&] { stage.model.expand(Tab::home); });
  stage.play(0.05);
  const Rect early = cover();
  stage.settle();
  const Rect inCard = cover();
  EXPECT_NEAR(inCard.width, 80, 0.1);
  EXPECT_LT(std::abs(early.width - inWing.width), std::abs(early.width - inCard.width));
  EXPECT_LT(std::abs(early.midY() - inWing.midY()), std::abs(early.midY() - inCard.midY()));
  withAnimation(notchClose, [&] { stage.model.collapse(); });
  stage.play(0.03);
  EXPECT_GT(cover().width, 40) << "and back";
  stage.settle();
  EXPECT_EQ(cover(), inWing);
}

TEST(HomeView, ShowsTheCalendarWhereItIsWanted) {
  HomeStage stage;
  const double beside = stage.frame("Position").width;
  EXPECT_THAT(stage.inspect.texts(), Contains("Calendar access not allowed"));
  stage.model.settings.calendarEnabled = false;
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Not(Contains("Calendar access not allowed")));
  EXPECT_NEAR(stage.frame("Position").width, beside + 160 + 1 + 2 * 18, 0.5) << "the card has all the room";
  stage.model.settings.calendarEnabled = true;
  stage.model.calendar.frozen = stage.model.calendar.authorized = true;
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Contains("Your day is clear ✨"));

  std::vector<CalendarItem> events;
  for (int i = 0; i < 4; ++i) {
    events.push_back(
        {.id = std::to_string(i), .title = "Event " + std::to_string(i), .start = stage.scheduler.now()});
  }
  stage.model.calendar.events = events;
  stage.play(0.3);
  const auto opacity = [&](int i) { return stage.inspect.text("Event " + std::to_string(i))->opacity(); };
  for (int i = 0; i + 1 < 4; ++i) EXPECT_GT(opacity(i), opacity(i + 1)) << "a cascade";
  stage.settle();
  const Rect surface = stage.inspect.id("surface")->frame();
  const auto bottom = [&](int i) {
    return stage.inspect.text("Event " + std::to_string(i))->frame().bottom();
  };
  EXPECT_THAT(stage.inspect.texts(), Contains("+2"));
  EXPECT_LT(bottom(1), surface.bottom() - 12);
  const Rect first = stage.inspect.text("Event 0")->frame();
  EXPECT_TRUE(stage.scene.input().canScroll({first.midX(), first.midY()}, {0, -10}));
  stage.inspect.scroll(*stage.inspect.text("Event 0"), {0, -500});
  stage.play(0.1);
  EXPECT_LT(bottom(3), surface.bottom() - 12) << "what has no room can be scrolled to";
  stage.model.calendar.authorized = false;
  stage.settle();
  EXPECT_THAT(
      stage.inspect.texts(), AllOf(Contains("Calendar access not allowed"), Not(Contains("Event 0"))));
}

TEST(EventRow, SaysWhen) {
  const Date now = startOfDay({1'800'000'000}) + 12 * 3600;
  const Date today = startOfDay(now), tomorrow = startOfDay(now, 1);
  const struct {
    CalendarItem event;
    const char *english, *french;
  } cases[] = {
      {{.start = today + 14 * 3600, .end = today + 15 * 3600}, "2:00 PM – 3:00 PM", "14:00 – 15:00"},
      {{.start = tomorrow + 9 * 3600, .end = tomorrow + 10.5 * 3600}, "Tomorrow · 9:00 AM – 10:30 AM",
          "Demain · 09:00 – 10:30"},
      {{.start = today, .end = tomorrow, .allDay = true}, "All day", "Toute la journée"},
      {{.start = tomorrow, .end = tomorrow, .allDay = true}, "Tomorrow · All day",
          "Demain · Toute la journée"},
      {{.start = today - 86400, .end = tomorrow, .allDay = true}, "All day", "Toute la journée"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ((ForcedLanguage("en"), eventTime(c.event, now)), c.english);
    EXPECT_EQ((ForcedLanguage("fr"), eventTime(c.event, now)), c.french);
  }
}

}  // namespace
}  // namespace tarnwick
