#include <gtest/gtest.h>

#include "ui/Button.h"
#include "ui/Slider.h"
#include "ui/Stage.h"

namespace tarnwick::ui {
namespace {

TEST(Input, tapsReachTheInnermostControlOnly) {
  int outer = 0, inner = 0;
  bool outerOn = true;
  Stage stage([&] {
    return ZStack(UnitPoint::center,
        {Rectangle().fill(black()),
            Circle().fill(white()).frame({.width = 60, .height = 60}).contentShape(Circle()).onTap([&] {
              ++inner;
            })})
        .frame({.width = 200, .height = 100})
        .onTap([&] { ++outer; }, outerOn);
  });
  stage.inspect.tap(Point{200, 150});
  EXPECT_EQ(inner, 1);
  EXPECT_EQ(outer, 0);
  stage.inspect.tap(Point{172, 122});  // in the circle's box, not in the circle
  EXPECT_EQ(inner, 1);
  EXPECT_EQ(outer, 1);
  stage.inspect.tap(Point{20, 20});
  stage.change([&] { outerOn = false; });
  stage.inspect.tap(Point{110, 110});
  EXPECT_EQ(outer, 1);
}

TEST(Input, aButtonActsOnReleaseInsideOnly) {
  int pressed = 0;
  Stage stage([&] {
    return Button({.name = "go",
        .label = Text("Go"),
        .style =
            [](View label, bool down, bool hovering) {
              return label.frame({.width = 40, .height = 20})
                  .overlay(Text("").id(
                      down       ? "down"
                      : hovering ? "hover"
                                 : "rest"));
            },
        .action = [&] { ++pressed; }});
  });
  ASSERT_TRUE(stage.inspect.id("rest"));
  stage.inspect.hover(*stage.inspect.control("go"));
  stage.scene.frame();
  ASSERT_TRUE(stage.inspect.id("hover"));
  stage.inspect.press(*stage.inspect.control("go"));
  stage.scene.frame();
  ASSERT_TRUE(stage.inspect.id("down"));
  stage.inspect.hover(Point{10, 10});
  stage.scene.frame();
  EXPECT_FALSE(stage.inspect.id("down")) << "away from it nothing would happen";
  stage.inspect.release({10, 10});
  EXPECT_EQ(pressed, 0);
  stage.inspect.tap(*stage.inspect.control("go"));
  EXPECT_EQ(pressed, 1);
  stage.inspect.leave();
  stage.scene.frame();
  EXPECT_TRUE(stage.inspect.id("rest"));
}

TEST(Input, dragsTellTheirPlaceInTheView) {
  std::vector<double> seen;
  int ended = 0;
  double distance = 0;
  Stage stage([&] {
    return Rectangle()
        .fill(white())
        .frame({.width = 100, .height = 20})
        .scaleEffect(2)
        .onDrag({.minimumDistance = distance,
            .changed = [&](const DragValue& drag) { seen.push_back(drag.location.x / drag.size.width); },
            .ended = [&](const DragValue&) { ++ended; }});
  });
  stage.inspect.drag({150, 150}, {250, 150});
  ASSERT_EQ(seen.size(), 3u) << "the press counts as well";
  EXPECT_NEAR(seen.front(), 0.25, 0.01);
  EXPECT_NEAR(seen.back(), 0.75, 0.01);
  EXPECT_EQ(ended, 1);
  seen.clear();
  stage.change([&] { distance = 200; });
  stage.inspect.drag({150, 150}, {250, 150});
  EXPECT_TRUE(seen.empty());
  EXPECT_EQ(ended, 1);
}

TEST(Input, aSliderShowsWhereItIsDragged) {
  std::vector<double> changed, ended;
  Stage stage([&] {
    return Slider({.name = "position",
        .value = 60,
        .most = 300,
        .style =
            [](double fraction, bool active) {
              return Rectangle()
                  .fill(white())
                  .frame({.width = 300, .height = 20})
                  .overlay(Text(std::to_string(lround(fraction * 100)) + (active ? " held" : "")));
            },
        .changed = [&](double value) { changed.push_back(value); },
        .ended = [&](double value) { ended.push_back(value); }});
  });
  EXPECT_TRUE(stage.inspect.text("20"));
  stage.scene.input().pressed({200, 150});
  stage.scene.input().moved({900, 150});
  stage.change([] {});
  EXPECT_TRUE(stage.inspect.text("100 held")) << "though it has not become its value";
  EXPECT_EQ(changed, (std::vector<double>{150, 300}));
  EXPECT_TRUE(ended.empty());
  stage.scene.input().released({900, 150});
  stage.scene.input().left();
  stage.scene.frame();
  EXPECT_EQ(ended, std::vector<double>{300});
  EXPECT_TRUE(stage.inspect.text("20"));
}

TEST(Input, gesturesGoToTheFrontmostViewThatWantsThem) {
  std::string heard;
  const auto add = [&](const std::string& what) { heard += what + " "; };
  Stage stage([&] {
    const View front =
        Rectangle()
            .fill(white())
            .frame({.width = 100, .height = 40})
            .onTap([&] { add("first"); })
            .onTap([&] { add("second"); })
            .onHover([](bool) {});
    return ZStack(UnitPoint::center, {front})
        .frame({.width = 300, .height = 200})
        .onDrag({.changed = [&](const DragValue&) { add("drag"); },
            .ended = [&](const DragValue&) { add("dropped"); }})
        .onPointer([&](const PointerEvent& event) {
          if (event.button != PointerButton::secondary) return false;
          add("menu" + std::to_string(event.clicks) + (event.modifiers.shift ? "+" : ""));
          return true;
        });
  });
  const auto heardOf = [&](const std::function<void()>& act) {
    heard.clear();
    act();
    return heard;
  };
  EXPECT_EQ(heardOf([&] { stage.inspect.tap(Point{200, 150}); }), "first second ");
  EXPECT_EQ(heardOf([&] {
    stage.inspect.drag({200, 150}, {202, 150});
  }),
      "first second ")
      << "hardly a drag of what is behind";
  EXPECT_EQ(heardOf([&] { stage.inspect.drag({200, 150}, {240, 150}); }), "drag drag dropped ");
  EXPECT_EQ(heardOf([&] { stage.inspect.tap(Point{80, 80}); }), "drag dropped ");
  EXPECT_EQ(heardOf([&] {
    stage.scene.input().pressed({200, 150}, PointerButton::secondary, {.shift = true});
    stage.scene.input().pressed({200, 150});
    stage.scene.input().released({200, 150});
    stage.scene.input().released({200, 150}, PointerButton::secondary);
  }),
      "menu1+ menu1 ")
      << "one gesture at a time, of the button that began it";
}

TEST(Input, whatVanishesIsToldThatItsGestureIsOver) {
  for (const char* how : {"gone", "leaving", "switched off", "pointer taken"}) {
    SCOPED_TRACE(how);
    bool shown = true, enabled = true, pressed = false;
    std::string heard;
    Stage stage([&] {
      const View knob = stateful(false, [&](State<bool> down) {
        pressed = down;
        return Rectangle()
            .fill(white())
            .onPress(down)
            .onTap([&] { heard += "tap "; })
            .onDrag({.minimumDistance = 5,
                .ended = [&](const DragValue&) { heard += "ended "; },
                .cancelled = [&] { heard += "cancelled "; }})
            .allowsHitTesting(enabled);
      });
      return shown ? knob : View();
    });
    stage.scene.input().pressed({100, 100});
    stage.scene.input().moved({120, 100});
    stage.scene.frame();
    EXPECT_TRUE(pressed);
    if (how == std::string("pointer taken")) {
      stage.scene.input().cancelled();
    } else {
      stage.change([&] { (how == std::string("switched off") ? enabled : shown) = false; },
          how == std::string("leaving") ? std::optional(linear(1)) : std::nullopt);
    }
    EXPECT_EQ(heard, "cancelled ");
    stage.scene.input().released({120, 100});
    EXPECT_EQ(heard, "cancelled ");
  }
}

TEST(Input, contentThatIsAtItsEndLetsTheNextScroll) {
  Stage stage([] {
    const View inner =
        ScrollView(Axis::vertical, Text("in").frame({.width = 90, .height = 120}).id("inner"))
            .frame({.width = 100, .height = 100});
    const View column = VStack({}, {inner, Rectangle().fill(white()).frame({.width = 100, .height = 400})});
    const View row = ScrollView(Axis::horizontal, Text("wide").frame({.width = 900, .height = 90}).id("row"))
                         .frame({.width = 200, .height = 100});
    return HStack(
        {}, {ScrollView(Axis::vertical, column.id("outer")).frame({.width = 100, .height = 200}), row});
  });
  const auto place = [&](const char* id) {
    const Rect frame = stage.inspect.id(id)->targetFrame();
    return std::lround(id == std::string("row") ? frame.x : frame.y);
  };
  const long inner = place("inner"), outer = place("outer"), row = place("row");
  constexpr Point overInner{100, 90}, overRow{250, 150};
  stage.scene.input().scrolled(overInner, {0, -30});
  EXPECT_EQ(place("inner") - inner, -20);
  EXPECT_EQ(place("outer"), outer);
  stage.scene.input().scrolled(overInner, {0, -30});
  EXPECT_EQ(place("outer") - outer, -30);
  EXPECT_FALSE(stage.scene.input().scrolled(overRow, {0, -48})) << "fingers have two directions";
  EXPECT_TRUE(stage.scene.input().scrolled(overRow, {0, -48}, true));
  EXPECT_EQ(place("row") - row, -48);
}

TEST(Input, doubleTapsCountWithinTheirTime) {
  int doubles = 0;
  Stage stage([&] { return Rectangle().fill(white()).onDoubleTap([&] { ++doubles; }); });
  stage.inspect.tap(Point{50, 50});
  stage.scheduler.advance(1);
  stage.inspect.tap(Point{50, 50});
  EXPECT_EQ(doubles, 0);
  stage.scheduler.advance(0.1);
  stage.inspect.tap(Point{50, 50});
  EXPECT_EQ(doubles, 1);
}

TEST(Input, clicksCountForWhatIsStillOnItsWayButNotThoseThatHaveBroughtIt) {
  bool open = false;
  int pressed = 0;
  Stage stage([&] {
    const View button = Button({.name = "go",
        .label = Rectangle().fill(white()).frame({.width = 30, .height = 30}),
        .action = [&] { ++pressed; }});
    return ZStack(UnitPoint::center, {open ? button : View()})
        .frame({.width = open ? 300.0 : 100.0, .height = 40, .align = UnitPoint::trailing})
        .clipShape(Rectangle())
        .onTap([&] { stage.change([&] { open = true; }, spring(0.4, 0.8)); }, !open);
  });
  const Point opening{200, 150}, rest{335, 150};
  stage.inspect.tap(opening);
  ASSERT_TRUE(open);
  stage.play(0.03);
  stage.inspect.tap(Point{335, 50});
  EXPECT_EQ(pressed, 0) << "nothing will be there";
  ASSERT_LT(stage.inspect.control("go")->frame().right(), rest.x);
  stage.inspect.tap(rest);
  EXPECT_EQ(pressed, 1);

  // Where a double click has opened it.
  stage.play(1);
  stage.change([&] { open = false; });
  stage.play(1);
  const Point edge{245, 150};
  stage.inspect.tap(edge);
  ASSERT_TRUE(open);
  for (int i = 0; i < 30 && !stage.inspect.control("go")->frame().contains(edge); ++i) stage.play(0.01);
  ASSERT_TRUE(stage.inspect.control("go")->frame().contains(edge));
  stage.inspect.tap(edge);
  EXPECT_EQ(pressed, 1);
}

TEST(Input, aTooltipShowsWhereThePointerRests) {
  Stage stage([] {
    return Rectangle()
        .fill(white())
        .frame({.width = 30, .height = 20})
        .tooltip("Settings")
        .frame({.maxWidth = infinity, .maxHeight = infinity, .align = UnitPoint::topTrailing});
  });
  for (double x = 380; x <= 390; ++x) {
    stage.inspect.hover(Point{x, 10});
    stage.play(0.5);
    EXPECT_FALSE(stage.inspect.text("Settings")) << "it does not rest yet";
  }
  stage.play(0.5);
  ASSERT_TRUE(stage.inspect.text("Settings"));
  EXPECT_LT(stage.inspect.text("Settings")->frame().right(), 400) << "inside the scene";
  EXPECT_GT(stage.inspect.text("Settings")->frame().y, 20) << "below the pointer";
  stage.inspect.hover(Point{10, 200});
  stage.play(0.5);
  EXPECT_FALSE(stage.inspect.text("Settings"));
}

TEST(Input, aButtonThatShrinksWhilePressedKeepsItsArea) {
  int pressed = 0;
  Stage stage([&] {
    return Button({.name = "go",
        .label = Rectangle().fill(white()),
        .style = [](View label, bool down,
                     bool) { return label.frame({.width = 100, .height = 20}).scaleEffect(down ? 0.8 : 1); },
        .action = [&] { ++pressed; }});
  });
  stage.scene.input().pressed({151, 150});
  stage.play(0.2);
  stage.scene.input().released({151, 150});
  EXPECT_EQ(pressed, 1);
}

TEST(Input, handlersMayRemoveWhatIsDragged) {
  bool shown = true;
  std::string seen(1000, 'x');
  Stage* here = nullptr;
  Stage stage([&] {
    return shown ? Rectangle().fill(white()).onDrag(
                       {.changed =
                               [&, copy = seen](const DragValue&) {
                                 here->change([&] { shown = false; }, linear(1));
                                 seen = copy + "y";
                               }})
                 : View();
  });
  here = &stage;
  stage.inspect.drag({100, 100}, {200, 100});
  EXPECT_EQ(seen.size(), 1001u);
}

TEST(Input, hoverFollowsWhatMovesUnderARestingPointer) {
  bool hovering = false;
  double x = 0;
  Stage stage([&] {
    return Rectangle()
        .fill(white())
        .frame({.width = 40, .height = 40})
        .onHover([&](bool h) { hovering = h; })
        .frame({.width = 400, .align = UnitPoint::leading})
        .offset({x, 0});
  });
  stage.inspect.hover(Point{120, 150});
  EXPECT_FALSE(hovering);
  stage.change([&] { x = 100; });
  EXPECT_TRUE(hovering);
}

}  // namespace
}  // namespace tarnwick::ui
