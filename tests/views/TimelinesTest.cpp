#include <gtest/gtest.h>

#include "ui/Stage.h"
#include "views/BatteryRing.h"
#include "views/ClaudeStatusGlyph.h"
#include "views/CrabView.h"
#include "views/EqualizerBars.h"
#include "views/SparkleSpinner.h"

namespace tarnwick {
namespace {

TEST(Timelines, WakeAsSeldomAsTheirPicturesChange) {
  struct {
    const char* name;
    ui::View view;
    int mostPerSecond, leastPerSecond;
  } const cases[] = {
      {"idle crab", crabView(CrabMood::idle), 0, 0},
      {"working crab", crabView(CrabMood::working), 10, 9},
      {"sparkle", sparkleSpinner(crabOrange), 10, 9},
      {"paused bars", equalizerBars(white(), false, 4), 0, 0},
      {"crab, sparkle and hand, together",
          ui::HStack({}, {crabView(CrabMood::working), sparkleSpinner(crabOrange), raisedHand()}), 10, 9},
      {"playing bars", equalizerBars(white(), true, 4), 24, 23},
  };
  for (const auto& c : cases) {
    ui::Stage stage(c.view);
    stage.play(0.5);
    const int before = stage.scheduler.wakeUps();
    stage.scheduler.advance(1);
    const int wakeUps = stage.scheduler.wakeUps() - before;
    EXPECT_LE(wakeUps, c.mostPerSecond) << c.name;
    EXPECT_GE(wakeUps, c.leastPerSecond) << c.name;
  }
}

TEST(EqualizerBars, FollowTheirCurve) {
  struct {
    int bar;
    double seconds, expected;
  } const cases[] = {{0, 0, 0.2800}, {0, 1, 0.4703}, {2, 0.5, 0.5684}, {3, 2, 0.8203}};
  for (const auto& c : cases) EXPECT_NEAR(equalizerLevel(c.bar, c.seconds), c.expected, 1e-4) << c.bar;
}

TEST(SparkleSpinner, GrowsAndShrinksOnceASecond) {
  ui::Stage stage(sparkleSpinner(crabOrange));
  std::string seen;
  for (int i = 0; i < 10; ++i) {
    seen += stage.inspect.texts().at(0);
    stage.play(0.1);
  }
  // The cycle, from wherever it was.
  const std::string cycle = "·✢✳✶✻✽✻✶✳✢";
  EXPECT_NE((cycle + cycle).find(seen), std::string::npos) << seen;
}

TEST(BatteryRing, FillsOnceItIsShown) {
  struct {
    int level;
    Color expected;
  } const cases[] = {{20, colors::red}, {21, colors::green}};
  for (const auto& c : cases) {
    ui::Stage stage(batteryRing(c.level));
    stage.play(0.5);
    const auto level = [&] { return stage.inspect.kind("Shape").back(); };
    EXPECT_EQ(level().color(), c.expected);
    EXPECT_TRUE(level().isMoving());
    stage.play(0.6);
    EXPECT_FALSE(level().isMoving());
    EXPECT_TRUE(stage.inspect.text(std::to_string(c.level)));
  }
}

}  // namespace
}  // namespace tarnwick
