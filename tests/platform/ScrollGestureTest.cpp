#include "linux/x11/ScrollGesture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "showcase/memory/VirtualScheduler.h"

using namespace tarnwick;
using testing::ElementsAre;
using Phase = ScrollEvent::Phase;

TEST(ScrollGesture, APauseEndsItAndAWheelMakesNone) {
  VirtualScheduler scheduler;
  std::vector<Phase> phases;
  ScrollGesture gesture(scheduler, [&](const ScrollEvent& event) {
    phases.push_back(event.phase);
    return true;
  });
  const ScrollEvent step{.precise = true, .deltaY = 3};
  EXPECT_TRUE(gesture.step(step));
  for (int i = 0; i < 3; ++i) {
    scheduler.advance(0.15);
    gesture.step(step);
  }
  EXPECT_THAT(phases, ElementsAre(Phase::began, Phase::changed, Phase::changed, Phase::changed));
  scheduler.advance(0.19);
  EXPECT_EQ(phases.size(), 4u);
  scheduler.advance(0.02);
  EXPECT_EQ(phases.back(), Phase::ended);
  gesture.step(step);
  scheduler.advance(5);
  gesture.step({.precise = false, .deltaY = 15});
  scheduler.advance(5);
  EXPECT_THAT(phases, ElementsAre(Phase::began, Phase::changed, Phase::changed, Phase::changed, Phase::ended,
                          Phase::began, Phase::ended, Phase::none));
}
