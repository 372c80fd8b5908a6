#include <gtest/gtest.h>

#include "ui/Stage.h"

namespace tarnwick::ui {
namespace {

View box(double width, const char* id) {
  return Rectangle().fill(white()).frame({.width = width, .height = 20}).id(id);
}

double width(Stage& stage, const char* id) { return stage.inspect.id(id)->frame().width; }

TEST(Motion, aSpringOvershootsAndComesToRest) {
  double w = 100;
  Stage stage([&] { return box(w, "a"); });
  stage.change([&] { w = 200; }, notchOpen);
  EXPECT_DOUBLE_EQ(width(stage, "a"), 100);
  double largest = 0;
  for (int i = 0; i < 120; ++i) {
    stage.play(1.0 / 60);
    largest = std::max(largest, width(stage, "a"));
  }
  EXPECT_GT(largest, 202);
  EXPECT_LT(largest, 210);
  EXPECT_DOUBLE_EQ(width(stage, "a"), 200);
  EXPECT_FALSE(stage.inspect.step()) << "a scene at rest asks for no more frames";
  stage.change([&] { w = 50; });
  EXPECT_DOUBLE_EQ(width(stage, "a"), 50) << "without an animation it is there at once";
  EXPECT_FALSE(stage.inspect.step());
}

TEST(Motion, aRetargetedSpringKeepsItsSpeed) {
  double w = 100;
  Stage stage([&] { return box(w, "a"); });
  stage.change([&] { w = 300; }, notchOpen);
  stage.play(0.1);
  const double before = width(stage, "a");
  stage.play(1.0 / 60);
  const double here = width(stage, "a"), speed = (here - before) * 60;
  ASSERT_GT(speed, 100);
  stage.change([&] { w = 100; }, notchOpen);
  EXPECT_NEAR(width(stage, "a"), here, 0.01);
  stage.play(1.0 / 60);
  // It goes on growing for a moment before it turns.
  EXPECT_GT(width(stage, "a"), here);
  stage.play(2);
  EXPECT_DOUBLE_EQ(width(stage, "a"), 100);
}

const Transition slide{
    .insertion = {.opacity = 0, .offset = {40, 0}}, .removal = {.opacity = 0, .offset = {-40, 0}}};

TEST(Motion, viewsEnterAndLeaveByTheirTransition) {
  bool shown = false;
  Stage stage([&] {
    return ZStack(UnitPoint::center, {box(300, "back"), shown ? box(20, "a").transition(slide) : View()});
  });
  stage.change([&] { shown = true; }, linear(1));
  EXPECT_NEAR(stage.inspect.id("a")->frame().x, 190 + 40, 0.1);
  EXPECT_NEAR(stage.inspect.id("a")->opacity(), 0, 0.01);
  stage.play(0.5);
  EXPECT_NEAR(stage.inspect.id("a")->frame().x, 190 + 20, 1);
  stage.play(0.6);
  EXPECT_NEAR(stage.inspect.id("a")->frame().x, 190, 0.1);
  stage.change([&] { shown = false; }, linear(1));
  stage.play(0.5);
  EXPECT_FALSE(stage.inspect.id("a"));
  const auto leaving = stage.inspect.first([](const auto& f) { return f.id() == "a"; });
  ASSERT_TRUE(leaving);
  EXPECT_NEAR(leaving->frame().x, 190 - 20, 1);
  // Back before it is gone: from where it is.
  stage.change([&] { shown = true; }, linear(1));
  EXPECT_NEAR(stage.inspect.id("a")->frame().x, 190 - 20, 1);
  stage.play(1.1);
  EXPECT_NEAR(stage.inspect.id("a")->frame().x, 190, 0.1);
  stage.change([&] { shown = false; });
  EXPECT_FALSE(stage.inspect.first([](const auto& f) { return f.id() == "a"; }))
      << "without animation it is gone";
}

TEST(Motion, whatIsInsideAViewThatEntersComesAlongUnlessItHasAMotionOfItsOwn) {
  bool shown = false;
  Transition own = Transition::opacity();
  own.insertionAnimation = linear(2);
  Stage stage([&] {
    const View page =
        ZStack(UnitPoint::center, {box(20, "inner").transition(slide), box(20, "own").transition(own)});
    return ZStack(UnitPoint::center, {box(300, "back"), shown ? page.id("page").transition(slide) : View()});
  });
  stage.change([&] { shown = true; }, linear(1));
  stage.play(0.5);
  EXPECT_NEAR(stage.inspect.id("inner")->frame().x, 190 + 20, 1) << "moved once, not twice";
  EXPECT_NEAR(stage.inspect.id("inner")->opacity(), 0.5, 0.02);
  EXPECT_NEAR(stage.inspect.id("own")->opacity(), 0.5 * 0.25, 0.02);
}

TEST(Motion, aViewThatEntersAGrowingBoxKeepsToTheSideThatItIsPinnedTo) {
  double w = 100;
  bool shown = false;
  Stage stage([&] {
    return ZStack(UnitPoint::trailing, {shown ? box(20, "a").transition(Transition::opacity()) : View()})
        .frame({.width = w, .height = 20, .align = UnitPoint::trailing})
        .id("box");
  });
  stage.change(
      [&] {
        w = 300;
        shown = true;
      },
      linear(1));
  for (int i = 0; i < 70; ++i) {
    EXPECT_NEAR(stage.inspect.id("box")->frame().right(), stage.inspect.id("a")->frame().right(), 0.6);
    stage.play(1.0 / 60);
  }
  stage.change(
      [&] {
        w = 100;
        shown = false;
      },
      linear(1));
  stage.play(0.5);
  const auto leaving = stage.inspect.first([](const auto& f) { return f.id() == "a"; });
  ASSERT_TRUE(leaving);
  EXPECT_NEAR(stage.inspect.id("box")->frame().right(), leaving->frame().right(), 0.6);
}

TEST(Motion, matchedViewsHandTheirPlaceOver) {
  int selected = 0;
  const Namespace names = Namespace::make();
  Stage stage([&] {
    Views buttons;
    for (int i = 0; i < 3; ++i) {
      buttons.push_back(
          Rectangle()
              .fill(white())
              .frame({.width = 40, .height = 20})
              .background(selected == i ? Capsule().fill(white(0.2)).matchedGeometry("pill", names).id("pill")
                                        : View()));
    }
    return HStack({}, {buttons}).frame({.maxWidth = infinity, .align = UnitPoint::leading});
  });
  const auto pills = [&] { return stage.inspect.all([](const auto& f) { return f.id() == "pill"; }); };
  EXPECT_NEAR(pills()[0].frame().x, 0, 0.1);
  stage.change([&] { selected = 2; }, linear(1));
  ASSERT_EQ(pills().size(), 1u);
  EXPECT_NEAR(pills()[0].frame().x, 0, 0.5);
  EXPECT_NEAR(pills()[0].opacity(), 1, 0.01);
  stage.play(0.5);
  EXPECT_NEAR(pills()[0].frame().x, 40, 1);
  EXPECT_EQ(pills().size(), 1u);
  stage.play(0.6);
  EXPECT_NEAR(pills()[0].frame().x, 80, 0.1);
}

TEST(Motion, whatComesBehindAViewLeavesTheViewAlone) {
  bool hovered = false;
  Stage stage(
      [&] { return Text("icon").background(hovered ? Capsule().fill(white(0.1)).id("hover") : View()); });
  stage.change([&] { hovered = true; }, linear(1));
  EXPECT_EQ(stage.inspect.all([](const auto& f) { return f.kind() == "Text"; }).size(), 1u);
  EXPECT_NEAR(stage.inspect.text("icon")->opacity(), 1, 0.01);
}

TEST(Motion, theFirstFrameIsAlreadyOnItsWay) {
  double w = 100;
  Stage stage([&] { return box(w, "a"); });
  stage.scene.setLead(1.0 / 60);
  stage.change([&] { w = 200; }, notchOpen);
  EXPECT_GT(width(stage, "a"), 101);
  stage.play(2);
  EXPECT_DOUBLE_EQ(width(stage, "a"), 200);
}

TEST(Motion, whatRepeatsForEverAsksForFramesOnlyWhileItCanBeSeen) {
  const struct {
    const char* name;
    std::function<View(View)> around;
    bool seen;
  } cases[] = {
      {"in sight", [](View view) { return view; }, true},
      {"transparent", [](View view) { return view.opacity(0).opacity(1); }, false},
      {"cut off",
          [](View view) {
            return view.offset({999, 0}).clipShape(Rectangle());
          },
          false},
  };
  for (const auto& c : cases) {
    double phase = 0;
    Stage stage([&] {
      return c.around(
          Rectangle()
              .stroke(white(), {.dash = {6, 5}, .dashPhase = phase})
              .frame({.width = 100, .height = 20})
              .animation(linear(0.6).repeatingForever(), phase));
    });
    stage.change([&] { phase = 22; }, linear(0.1));
    stage.play(9.1);
    EXPECT_EQ(stage.inspect.step(), c.seen) << c.name;
  }
}

TEST(Motion, timelinesTickOnlyWhileTheyCanBeSeen) {
  int made = 0;
  double opacity = 1;
  bool paused = false;
  Stage stage([&] {
    return timeline(0.1, paused, [&](Date) {
      ++made;
      return Text(std::to_string(made));
    }).opacity(opacity);
  });
  stage.play(1);
  EXPECT_NEAR(made, 11, 1);
  stage.change([&] { opacity = 0; });
  const int hidden = made;
  stage.play(5);
  EXPECT_EQ(made, hidden);
  stage.change([&] { opacity = 1; });
  stage.play(1);
  EXPECT_NEAR(made - hidden, 11, 2);
  stage.change([&] { paused = true; });
  const int stopped = made;
  stage.play(5);
  EXPECT_EQ(made, stopped);
}

TEST(Motion, aCountdownTicksOnItsOwnSecondsAndEnds) {
  VirtualScheduler clock;
  const Date end = clock.now() + 2.7;
  Stage stage(countdown(end, [](int left) { return Text(std::to_string(left)); }), {400, 300}, 1, &clock);
  std::string seen;
  for (int i = 0; i < 8; ++i) {
    seen += stage.inspect.texts().at(0);
    stage.play(0.5);
  }
  EXPECT_EQ(seen, "33221100");
  const int before = clock.wakeUps();
  stage.play(5);
  EXPECT_EQ(clock.wakeUps(), before);
}

TEST(Motion, repaintsOnlyWhatChanged) {
  int ticks = 0;
  Stage stage([&] {
    return HStack({},
        {Text(std::to_string(ticks % 10)).monospacedDigits().frame({.width = 20, .height = 20}).id("tick"),
            Spacer(), Text("still").id("still")});
  });
  stage.scene.takeDamage();
  stage.change([&] { ++ticks; });
  const auto damage = stage.scene.takeDamage();
  ASSERT_EQ(damage.size(), 1u);
  EXPECT_LT(damage[0].width, 30);
  EXPECT_TRUE(damage[0].intersects(stage.inspect.id("tick")->frame()));
  stage.change([] {});
  EXPECT_TRUE(stage.scene.takeDamage().empty());
}

/// The first size that its body is called with is the old one: what it makes for that goes at once.
TEST(Motion, aMatchedViewMayGoInTheCommitThatHasMadeIt) {
  int round = 0;
  const Namespace names = Namespace::make();
  Stage stage([&] {
    return GeometryReader([&, round = round](Size size) {
      return Text("thing")
          .matchedGeometry("thing", names)
          .id(std::to_string(round) + "/" + std::to_string(size.width));
    }).frame({.width = 100.0 + 100 * round, .height = 20});
  });
  stage.change([&] { ++round; }, linear(1));
  EXPECT_TRUE(stage.inspect.id("1/200.000000"));
}

}  // namespace
}  // namespace tarnwick::ui
