#include "linux/process/QtScheduler.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/TestDesktop.h"

using namespace tarnwick;

TEST(QtScheduler, RunsInTheOrderOfTime) {
  QtScheduler scheduler;
  std::string order;
  const Task later = scheduler.after(0.3, [&] { order += 'd'; });
  Task never;
  const Task alarm = scheduler.at(scheduler.now() + 0.2, [&] {
    order += 'c';
    never.cancel();
  });
  never = scheduler.at(scheduler.now() + 0.2001, [&] { order += 'x'; });
  const Task sooner = scheduler.after(0.1, [&] { order += 'b'; });
  const Task next = scheduler.post([&] { order += 'a'; });
  EXPECT_EQ(order, "");
  EXPECT_TRUE(waitUntil([&] { return order.size() == 4; }));
  EXPECT_EQ(order, "abcd");
  const Task past = scheduler.at(Date::distantPast(), [&] { order += 'e'; });
  EXPECT_TRUE(waitUntil([&] { return order.size() == 5; }));
}

TEST(QtScheduler, CancelledWorkDoesNotRunAndTimersOfASecondShareOneBeat) {
  QtScheduler scheduler;
  int dropped = 0, fastRuns = 0, slowRuns = 0;
  {
    const Task tasks[] = {scheduler.after(0, [&] { ++dropped; }), scheduler.post([&] { ++dropped; }),
        scheduler.at(scheduler.now(), [&] { ++dropped; }), scheduler.every(0.01, [&] { ++dropped; }),
        scheduler.background([] {}, [&] { ++dropped; })};
  }
  Task fast = scheduler.every(0.005, [&] {
    ++fastRuns;
    fast.cancel();
  });
  Task slow = scheduler.every(1, [&] {
    ++slowRuns;
    slow = Task();
  });
  int turns = 0;
  std::vector<int> first, second;
  Task later;
  const Task counter = scheduler.every(0.001, [&] { ++turns; });
  const Task one = scheduler.every(1, [&] { first.push_back(turns); });
  const Task start =
      scheduler.after(0.3, [&] { later = scheduler.every(1, [&] { second.push_back(turns); }); });
  ASSERT_TRUE(waitUntil([&] { return second.size() == 2; }));
  EXPECT_EQ(second.back(), first.back()) << "in the same turn of the loop, although they were begun apart";
  EXPECT_EQ(dropped, 0);
  EXPECT_EQ(fastRuns, 1) << "it cancelled itself";
  EXPECT_EQ(slowRuns, 1) << "it cancelled itself";
}

TEST(QtScheduler, BackgroundWorkRunsElsewhereAndItsEndOnTheMainThread) {
  QtScheduler scheduler;
  const auto main = std::this_thread::get_id();
  std::thread::id work, then;
  const Task task = scheduler.background(
      [&] { work = std::this_thread::get_id(); }, [&] { then = std::this_thread::get_id(); });
  EXPECT_TRUE(waitUntil([&] { return then != std::thread::id(); }));
  EXPECT_EQ(then, main);
  EXPECT_NE(work, main);
}
