#include "base/Observed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "base/Derived.h"

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
  Subscription early, own, added;
  early = thing.observe([&] { heard.push_back("early"); });
  own = thing.observe([&] {
    heard.push_back("own");
    if (heard.size() > 2) return;
    early = {};
    added = thing.observe([&] { heard.push_back("added"); });
    own = {};
  });
  const auto last = thing.observe([&] { heard.push_back("last"); });
  thing.count = 1;
  EXPECT_THAT(heard, testing::ElementsAre("early", "own", "last"));
  thing.count = 2;
  EXPECT_THAT(heard, testing::ElementsAre("early", "own", "last", "last", "added"));
}

TEST(Derived, TellsWhoeverReadsItWhenTheResultDiffers) {
  Thing thing;
  int computed = 0, told = 0;
  const Derived<bool> many([&] {
    ++computed;
    return thing.count > 1;
  });
  EXPECT_FALSE(many.get());
  thing.count = 1;
  EXPECT_EQ(computed, 1) << "nobody asks";
  Subscription reader;
  {
    const ReadScope reads([&] { ++told; });
    EXPECT_FALSE(many.get());
    reader = reads.subscription();
  }
  const struct {
    int count;
    int told;
    bool many;
  } steps[] = {{0, 0, false}, {2, 1, true}, {3, 1, true}, {1, 2, false}};
  for (const auto& step : steps) {
    thing.count = step.count;
    EXPECT_EQ(told, step.told) << step.count;
    EXPECT_EQ(many.get(), step.many) << step.count;
  }
}

}  // namespace
}  // namespace tarnwick
