#include <gmock/gmock.h>

#include "support/ForcedLanguage.h"
#include "ui/Stage.h"
#include "views/ButtonStyles.h"
#include "views/NotchStage.h"

namespace tarnwick {
namespace {

using testing::Contains;

void open(NotchStage& stage, Tab tab) {
  withAnimation(notchOpen, [&] { stage.model.expand(tab); });
  stage.settle();
}

std::optional<ui::Inspector::Found> page(NotchStage& stage, const char* tab, bool leaving) {
  return stage.inspect.first([&](const ui::Inspector::Found& found) {
    return found.id() == tab && found.kind() == "Frame" && found.isLeaving() == leaving;
  });
}

TEST(TabBar, SelectsAndNamesItsTabs) {
  struct {
    Tab tab;
    const char *english, *french;
  } const tabs[] = {
      {Tab::notes, "Notes", "Notes"},
      {Tab::tray, "Files", "Fichiers"},
      {Tab::audio, "Sound", "Son"},
      {Tab::claude, "Claude Code", "Claude Code"},
      {Tab::home, "Home", "Accueil"},
  };
  NotchStage stage;
  open(stage, Tab::home);
  for (const bool french : {false, true}) {
    // What is shown already follows.
    const ForcedLanguage language(french ? "fr" : "en");
    stage.settle();
    for (const auto& c : tabs) {
      const auto button = stage.inspect.control(french ? c.french : c.english);
      ASSERT_TRUE(button) << c.english;
      EXPECT_EQ(button->interaction()->role, ui::Role::button);
      stage.inspect.tap(*button);
      stage.settle();
      EXPECT_EQ(stage.model.tab, c.tab) << c.english;
    }
  }
}

TEST(TabBar, KeepsClearOfTheCameraAndOfTheScreensEdge) {
  for (const double camera : {150.0, 185.0, 208.0, 260.0}) {
    SCOPED_TRACE(camera);
    NotchStage stage;
    stage.model.notchSize = Size{camera, 24};
    open(stage, Tab::home);
    const Rect surface = stage.inspect.id("surface")->frame();
    const Rect first = stage.inspect.control("Home")->frame();
    const Rect last = stage.inspect.control("Notes")->frame();
    EXPECT_LE(last.right(), surface.midX() - camera / 2);
    // From the surface's edge inside the ear.
    EXPECT_GE(first.x - surface.x - 6, 11);
    EXPECT_LE(first.x - surface.x - 6, 14);
    for (const char* name : {"Home", "Settings"}) {
      EXPECT_GE(stage.inspect.control(name)->frame().y, 1) << name;
      EXPECT_LE(stage.inspect.control(name)->frame().bottom(), 23) << name;
    }
  }
}

TEST(TopStrip, KeepsTooltipsOnTheSurface) {
  NotchStage stage;
  open(stage, Tab::claude);
  const Rect surface = stage.inspect.id("surface")->frame().grownBy(-6, 0);
  for (const char* name : {"Home", "Settings"}) {
    SCOPED_TRACE(name);
    stage.inspect.hover(*stage.inspect.control(name));
    stage.settle();
    const auto tooltip = stage.inspect.text(name);
    ASSERT_TRUE(tooltip);
    EXPECT_GT(tooltip->frame().x, surface.x);
    EXPECT_LT(tooltip->frame().right(), surface.right());
  }
}

TEST(ExpandedBody, SlidesInTheDirectionOfTheMove) {
  NotchStage stage;
  open(stage, Tab::claude);
  const double place = page(stage, "claude", false)->frame().midX();
  struct {
    Tab to;
    bool enters;
    double side;
  } const moves[] = {
      {Tab::notes, false, -1}, {Tab::claude, true, -1}, {Tab::home, false, 1}, {Tab::claude, true, 1}};
  for (const auto& move : moves) {
    SCOPED_TRACE(rawValue(move.to));
    stage.model.select(move.to);
    stage.play(0.06);
    const auto moving = page(stage, "claude", !move.enters);
    ASSERT_TRUE(moving);
    EXPECT_GT((moving->frame().midX() - place) * move.side, 1);
    EXPECT_LT((moving->frame().midX() - place) * move.side, 40);
    EXPECT_GT(moving->blur(), 0.5);
    EXPECT_LT(moving->opacity(), 0.99);
    stage.settle();
    EXPECT_FALSE(page(stage, "claude", true));
    EXPECT_EQ(page(stage, "claude", false).has_value(), move.enters);
  }
}

TEST(TopStrip, OpensTheSettingsAndShowsTheBatteryThatThereIs) {
  NotchStage stage;
  open(stage, Tab::home);
  EXPECT_THAT(stage.inspect.texts(), testing::Not(Contains(testing::EndsWith(" %"))));
  stage.model.power.hasBattery = true;
  stage.model.power.level = 64;
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Contains("64 %"));
  EXPECT_FALSE(stage.inspect.symbol("bolt.fill"));
  stage.model.power.pluggedIn = true;
  stage.settle();
  EXPECT_TRUE(stage.inspect.symbol("bolt.fill"));

  stage.inspect.tap(*stage.inspect.control("Settings"));
  EXPECT_EQ(stage.settingsOpened, 1);
}

TEST(ButtonStyles, AnswerThePointer) {
  struct {
    const char* name;
    ui::ButtonStyle style;
    double restFill, hoverFill, pressFill, hoverScale, pressScale;
  } const styles[] = {
      {"round", notchButtonStyle(28, 1.08), 0, 0.12, 0.22, 1.08, 0.86},
      {"pill", notchPillButtonStyle(), 0.08, 0.16, 0.24, 1, 0.94},
  };
  for (const auto& s : styles) {
    SCOPED_TRACE(s.name);
    int clicks = 0;
    ui::Stage stage(ui::Button(
        {.name = "ok", .label = ui::Text("label"), .style = s.style, .action = [&] { ++clicks; }}));
    const auto expect = [&](double fill, double scale) {
      stage.play(1);
      EXPECT_NEAR(stage.inspect.kind("Shape")[0].color().alpha, fill, 1e-6);
      EXPECT_NEAR(stage.inspect.text("label")->scale(), scale, 1e-6);
    };
    expect(s.restFill, 1);
    stage.inspect.hover(*stage.inspect.text("label"));
    expect(s.hoverFill, s.hoverScale);
    stage.inspect.press(*stage.inspect.text("label"));
    expect(s.pressFill, s.pressScale);
    stage.inspect.release({200, 150});
    expect(s.hoverFill, s.hoverScale);
    EXPECT_EQ(clicks, 1);
    stage.inspect.leave();
    expect(s.restFill, 1);
  }
}

}  // namespace
}  // namespace tarnwick
