#include "base/Animation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

/// The damped oscillator, step by step.
Motion::Sample integrated(const Motion& motion, double time) {
  const double omega = 2 * std::numbers::pi / motion.animation.response;
  double x = motion.from - motion.to, v = motion.velocity;
  const double dt = 1e-5;
  for (double t = 0; t < time; t += dt) {
    v += (-omega * omega * x - 2 * motion.animation.dampingFraction * omega * v) * dt;
    x += v * dt;
  }
  return {motion.to + x, v};
}

TEST(Motion, SpringsFollowTheirEquation) {
  for (const Animation& animation : {notchOpen, notchClose, notchHover, spring(0.5, 1)}) {
    for (const double velocity : {0.0, 900.0, -900.0}) {
      const Motion motion{.from = 20, .to = 120, .velocity = velocity, .start = 3, .animation = animation};
      for (const double time : {0.05, 0.15, 0.3}) {
        const Motion::Sample sample = motion.at(3 + time), expected = integrated(motion, time);
        EXPECT_NEAR(sample.value, expected.value, 0.1) << animation.response << " " << time;
        EXPECT_NEAR(sample.velocity, expected.velocity, 2) << animation.response << " " << time;
      }
    }
  }
}

TEST(Motion, SpringsComeToRestOnTheTargetWithoutAVisibleJump) {
  for (const Animation& animation : {notchOpen, notchClose, notchHover, spring(0.25, 0.85), spring(0.5, 1)}) {
    const Motion motion{.from = 0, .to = 1000, .start = 0, .animation = animation};
    double last = 0;
    while (!motion.finishedAt(last)) last += 0.001;
    EXPECT_NEAR(motion.at(last - 0.001).value, 1000, 1) << animation.response;
    EXPECT_EQ(motion.at(last).value, 1000);
    EXPECT_LT(last, 3);
  }
}

TEST(Motion, TimingCurves) {
  const struct {
    Animation animation;
    double time, value;
  } cases[] = {
      {linear(2), 0.5, 0.25},
      {linear(2), 2, 1},
      {linear(2), 9, 1},
      {linear(0), 0, 1},
      {easeInOut(1), 0.5, 0.5},
      {easeIn(1), 0.25, 0.0935},
      {easeOut(1), 0.75, 0.9065},
      {linear(2).delayed(1), 1, 0},
      {linear(2).delayed(1), 2, 0.5},
      {linear(2).repeatingForever(), 5, 0.5},
  };
  for (const auto& c : cases) {
    const Motion motion{.from = 0, .to = 1, .start = 0, .animation = c.animation};
    EXPECT_NEAR(motion.at(c.time).value, c.value, 0.001) << c.time;
  }
  const Motion forever{.to = 1, .animation = linear(1).repeatingForever()};
  EXPECT_FALSE(forever.finishedAt(1e6));
}

TEST(WithAnimation, CommitsEachChangeWithItsOwnAnimation) {
  // Takes over a text that grows, and notes what was new with which animation.
  struct Screen : transaction::Committer {
    void commit(const std::optional<Animation>& animation) override {
      if (state.size() == shown) return;
      log.push_back(
          state.substr(shown) + ":" + (animation ? std::to_string(lround(animation->duration)) : "none"));
      shown = state.size();
    }
    std::string state;
    size_t shown = 0;
    std::vector<std::string> log;
  };
  Screen screen;
  screen.state += "a";
  withAnimation(linear(1), [&] {
    screen.state += "b";
    withAnimation(linear(2), [&] { screen.state += "c"; });
    screen.state += "d";
  });
  EXPECT_THROW(withAnimation(linear(9), [] { throw 1; }), int);
  EXPECT_EQ(transaction::current(), std::nullopt);
  withAnimation(linear(3), [&] { screen.state += "e"; });
  EXPECT_THAT(screen.log, testing::ElementsAre("a:none", "b:1", "c:2", "d:1", "e:3"));
}

}  // namespace
}  // namespace tarnwick
