#include <gtest/gtest.h>

#include "base/Observed.h"
#include "ui/Stage.h"

namespace tarnwick::ui {
namespace {

TEST(Renewal, aBodyIsMadeAnewByWhatItHasReadAndNothingElse) {
  struct Thing : ObservableObject {
    Observed<bool> on{*this};
    Observed<int> number{*this}, other{*this};
  } thing;
  int outer = 0;
  Stage stage(observing([&] {
    ++outer;
    return Group(observing([&] { return Text(thing.on ? std::to_string(thing.number) : "off"); }));
  }));
  const struct {
    const char* change;
    std::function<void()> make;
    const char* text;
    unsigned renewals;
  } steps[] = {
      {"of what it has not read", [&] { thing.number = 1; }, "off", 0},
      {"of what it has read", [&] { thing.on = true; }, "1", 1},
      {"of what it has read since", [&] { thing.number = 2; }, "2", 1},
      {"of another property of the same object", [&] { thing.other = 1; }, "2", 0},
      {"twice", [&] { thing.number = 3, thing.on = false; }, "off", 1},
      {"of what it reads no more", [&] { thing.number = 4; }, "off", 0},
  };
  for (const auto& step : steps) {
    const unsigned before = stage.inspect.renewals();
    step.make();
    stage.scene.frame();
    EXPECT_TRUE(stage.inspect.text(step.text)) << step.change;
    EXPECT_EQ(stage.inspect.renewals() - before, step.renewals) << step.change;
  }
  EXPECT_EQ(outer, 1);
}

TEST(Renewal, aBodyThatAlwaysChangesWhatItReadsIsLeftAsItIs) {
  int runs = 0;
  bool restless = true;
  Stage stage(observing([&] {
    return VStack({}, {stateful(0, [&](State<int> count) {
      ++runs;
      if (restless) count.set(count.get() + 1);
      return Text("count").onTap([=] { count.set(-1); });
    })});
  }));
  stage.play(1);
  EXPECT_LT(runs, 20);
  restless = false;
  runs = 0;
  stage.inspect.tap(*stage.inspect.text("count"));
  stage.scene.frame();
  EXPECT_EQ(runs, 1) << "later changes count as ever";
}

TEST(Renewal, localStateLivesAsLongAsItsPlace) {
  bool shown = true;
  Stage stage([&] {
    const auto counter = [](State<int> count) {
      return Text("taps " + std::to_string(count)).onTap([=] { count.set(count + 1); });
    };
    return shown ? stateful(0, counter) : View();
  });
  stage.inspect.tap(*stage.inspect.text("taps 0"));
  stage.scene.frame();
  stage.change([] {});
  EXPECT_TRUE(stage.inspect.text("taps 1"));
  stage.change([&] { shown = false; });
  stage.change([&] { shown = true; });
  EXPECT_TRUE(stage.inspect.text("taps 0"));
}

TEST(Renewal, aStateIsItsValueWhereChangesAreLookedFor) {
  Stage stage(stateful(100.0, [](State<double> width) {
    return Rectangle()
        .fill(white())
        .frame({.width = width, .height = 20})
        .animation(linear(1), width)
        .id("box")
        .onTap([=] { width.set(200); });
  }));
  stage.inspect.tap(*stage.inspect.id("box"));
  stage.scene.frame();
  stage.play(0.5);
  EXPECT_NEAR(stage.inspect.id("box")->frame().width, 150, 4);
}

}  // namespace
}  // namespace tarnwick::ui
