#include "platform/linux/QtScheduler.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/TestDesktop.h"

using namespace tarnwick;

TEST(QtScheduler, RunsInTheOrderOfTime) {
  QtScheduler scheduler;
  std::string order;
  const Task later = scheduler.after(0.06, [&] { order += 'c'; });
  const Task sooner = scheduler.after(0.02, [&] { order += 'b'; });
  const Task next = scheduler.post([&] { order += 'a'; });
  EXPECT_EQ(order, "");
  EXPECT_TRUE(waitUntil([&] { return order.size() == 3; }));
  EXPECT_EQ(order, "abc");
}

TEST(QtScheduler, CancelledWorkDoesNotRun) {
  QtScheduler scheduler;
  int runs = 0;
  {
    const Task dropped[] = {scheduler.after(0, [&] { ++runs; }), scheduler.post([&] { ++runs; }),
                            scheduler.every(0.01, [&] { ++runs; }),
                            scheduler.background([] {}, [&] { ++runs; })};
  }
  bool reached = false;
  const Task end = scheduler.after(0.05, [&] { reached = true; });
  EXPECT_TRUE(waitUntil([&] { return reached; }));
  EXPECT_EQ(runs, 0);
}

TEST(QtScheduler, WorkMayCancelItself) {
  QtScheduler scheduler;
  int runs = 0;
  Task fast = scheduler.every(0.005, [&] {
    ++runs;
    fast.cancel();
  });
  Task slow = scheduler.every(1, [&] {
    ++runs;
    slow = Task();
  });
  bool reached = false;
  const Task end = scheduler.after(2.2, [&] { reached = true; });
  EXPECT_TRUE(waitUntil([&] { return reached; }));
  EXPECT_EQ(runs, 2);
}

TEST(QtScheduler, TimersOfASecondShareOneBeat) {
  QtScheduler scheduler;
  std::vector<double> first, second;
  Task later;
  const Task one = scheduler.every(1, [&] { first.push_back(scheduler.uptime()); });
  const Task start = scheduler.after(
      0.3, [&] { later = scheduler.every(1, [&] { second.push_back(scheduler.uptime()); }); });
  ASSERT_TRUE(waitUntil([&] { return second.size() == 2; }));
  // Both ran in the same turn of the loop, although they were begun a third of a second apart.
  EXPECT_NEAR(second.back(), first.back(), 0.05);
  EXPECT_NEAR(second[1] - second[0], 1, 0.5);
}

TEST(QtScheduler, BackgroundWorkRunsElsewhereAndItsEndOnTheMainThread) {
  QtScheduler scheduler;
  const auto main = std::this_thread::get_id();
  std::thread::id work, then;
  const Task task = scheduler.background([&] { work = std::this_thread::get_id(); },
                                         [&] { then = std::this_thread::get_id(); });
  EXPECT_TRUE(waitUntil([&] { return then != std::thread::id(); }));
  EXPECT_EQ(then, main);
  EXPECT_NE(work, main);
}
