#include "base/Observed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

struct Thing : ObservableObject {
  Observed<int> count{*this};
  Observed<std::vector<int>> list{*this};
};

TEST(Observed, TellsOfDifferencesOnceTheyAreThere) {
  Thing thing;
  std::vector<int> seen;
  const auto subscription = thing.observe([&] { seen.push_back(thing.count); });
  thing.count = 0;
  thing.count = 1;
  thing.count = 1;
  thing.count = 2;
  EXPECT_THAT(seen, testing::ElementsAre(1, 2));
  thing.list.mutate([](auto&) { return false; });
  EXPECT_EQ(seen.size(), 2u);
  thing.list.mutate([](auto& list) {
    list.push_back(7);
    return true;
  });
  EXPECT_EQ(seen.size(), 3u);
  EXPECT_EQ(thing.list->front(), 7);
}

TEST(Observed, ASubscriptionEndsWithItsHandle) {
  auto thing = std::make_unique<Thing>();
  int first = 0, second = 0;
  Subscription keeps = thing->observe([&] { ++first; });
  {
    const Subscription ends = thing->observe([&] { ++second; });
    thing->count = 1;
  }
  thing->count = 2;
  EXPECT_EQ(first, 2);
  EXPECT_EQ(second, 1);
  thing.reset();
  keeps = {};
}

TEST(Observed, ObserversMayComeAndGoWhileTheyAreTold) {
  Thing thing;
  std::vector<std::string> heard;
  Subscription own, other, added;
  own = thing.observe([&] {
    heard.push_back("own");
    if (heard.size() > 1) return;
    added = thing.observe([&] { heard.push_back("added"); });
    other = {};
    own = {};
  });
  other = thing.observe([&] { heard.push_back("other"); });
  const auto last = thing.observe([&] { heard.push_back("last"); });
  thing.count = 1;
  EXPECT_THAT(heard, testing::ElementsAre("own", "last"));
  thing.count = 2;
  EXPECT_THAT(heard, testing::ElementsAre("own", "last", "last", "added"));
}

}  // namespace
}  // namespace tarnwick
