#include <gmock/gmock.h>

#include "NotchStage.h"
#include "ViewStage.h"
#include "support/ForcedLanguage.h"
#include "views/ButtonStyles.h"

namespace tarnwick {
namespace {

using testing::Contains;

void open(NotchStage& stage, Tab tab) {
  withAnimation(notchOpen, [&] { stage.model.expand(tab); });
  stage.settle();
}

std::optional<ui::Inspector::Found> page(NotchStage& stage, const char* tab, bool leaving) {
  return stage.inspector->first([&](const ui::Inspector::Found& found) {
    return found.id() == tab && found.kind() == "Frame" && found.isLeaving() == leaving;
  });
}

TEST(TabBar, SelectsAndNamesItsTabs) {
  struct {
    Tab tab;
    const char *english, *french;
  } const tabs[] = {
      {Tab::notes, "Notes", "Notes"}, {Tab::tray, "Files", "Fichiers"},
      {Tab::audio, "Sound", "Son"},   {Tab::claude, "Claude Code", "Claude Code"},
      {Tab::home, "Home", "Accueil"},
  };
  for (const bool french : {false, true}) {
    const ForcedLanguage language(french ? "fr" : "en");
    NotchStage stage;
    open(stage, Tab::home);
    for (const auto& c : tabs) {
      const auto button = stage.inspector->control(french ? c.french : c.english);
      ASSERT_TRUE(button) << c.english;
      EXPECT_EQ(button->interaction()->role, ui::Role::button);
      stage.inspector->tap(*button);
      stage.settle();
      EXPECT_EQ(stage.model.tab, c.tab) << c.english;
    }
  }
}

TEST(TabBar, LetsOnePillGlideToTheSelectedTab) {
  NotchStage stage;
  open(stage, Tab::home);
  const auto pills = [&] {
    return stage.inspector->all([](const auto& found) { return found.id() == "pill"; });
  };
  ASSERT_EQ(pills().size(), 1u);
  const Rect from = pills()[0].frame();
  EXPECT_EQ(from.size(), (Size{31, 26}));
  stage.model.select(Tab::notes);
  stage.play(0.1);
  ASSERT_EQ(pills().size(), 1u);
  EXPECT_GT(pills()[0].frame().x, from.x + 2);
  EXPECT_LT(pills()[0].frame().x, from.x + 4 * 32 - 2);
  EXPECT_EQ(pills()[0].opacity(), 1);
  stage.settle();
  EXPECT_NEAR(pills()[0].frame().x, from.x + 4 * 32, 0.01);
}

TEST(TabBar, KeepsClearOfTheCamera) {
  for (const double camera : {150.0, 185.0, 208.0, 260.0}) {
    SCOPED_TRACE(camera);
    NotchStage stage;
    stage.model.notchSize = Size{camera, 32};
    open(stage, Tab::home);
    const Rect surface = stage.inspector->id("surface")->frame();
    const Rect first = stage.inspector->control("Home")->frame();
    const Rect last = stage.inspector->control("Notes")->frame();
    EXPECT_LE(last.right(), surface.midX() - camera / 2);
    // From the surface's edge inside the ear.
    EXPECT_GE(first.x - surface.x - 6, 11);
    EXPECT_LE(first.x - surface.x - 6, 14);
  }
}

TEST(TopStrip, KeepsTooltipsOnTheSurface) {
  NotchStage stage;
  open(stage, Tab::claude);
  const Rect surface = stage.inspector->id("surface")->frame().grownBy(-6, 0);
  for (const char* name : {"Home", "Settings"}) {
    SCOPED_TRACE(name);
    stage.inspector->hover(*stage.inspector->control(name));
    stage.settle();
    const auto tooltip = stage.inspector->text(name);
    ASSERT_TRUE(tooltip);
    EXPECT_GT(tooltip->frame().x, surface.x);
    EXPECT_LT(tooltip->frame().right(), surface.right());
  }
}

TEST(TabBar, LetsTheMascotFlyInFromTheWing) {
  NotchStage stage;
  stage.hook("a", "UserPromptSubmit");
  stage.settle();
  const Rect wing = stage.inspector->kind("Canvas")[0].frame();
  withAnimation(notchOpen, [&] { stage.model.expand(Tab::home); });
  stage.play(1.0 / 60);
  const Rect start = stage.inspector->kind("Canvas").back().frame();
  stage.settle();
  const Rect end = stage.inspector->kind("Canvas").back().frame();
  // Of the way between the two places it has gone only a part.
  EXPECT_LT(std::abs(start.midX() - wing.midX()), std::abs(end.midX() - wing.midX()));
  EXPECT_GT(start.width, end.width);
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
  EXPECT_THAT(stage.inspector->texts(), testing::IsEmpty());
  stage.model.power.hasBattery = true;
  stage.model.power.level = 64;
  stage.settle();
  EXPECT_THAT(stage.inspector->texts(), Contains("64 %"));
  EXPECT_FALSE(stage.inspector->symbol("bolt.fill"));
  stage.model.power.pluggedIn = true;
  stage.settle();
  EXPECT_TRUE(stage.inspector->symbol("bolt.fill"));

  stage.inspector->tap(*stage.inspector->control("Settings"));
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
    ViewStage stage(ui::Button(
        "ok", [&] { ++clicks; }, ui::Text("label"), s.style));
    const auto expect = [&](double fill, double scale) {
      stage.play(1);
      EXPECT_NEAR(stage.inspector.kind("Shape")[0].color().alpha, fill, 1e-6);
      EXPECT_NEAR(stage.inspector.text("label")->scale(), scale, 1e-6);
    };
    expect(s.restFill, 1);
    stage.inspector.hover(*stage.inspector.text("label"));
    expect(s.hoverFill, s.hoverScale);
    stage.inspector.press(*stage.inspector.text("label"));
    expect(s.pressFill, s.pressScale);
    stage.inspector.release({200, 100});
    expect(s.hoverFill, s.hoverScale);
    EXPECT_EQ(clicks, 1);
    stage.inspector.leave();
    expect(s.restFill, 1);
  }
}

TEST(HoverLift, RaisesWhatIsUnderThePointer) {
  ViewStage stage(hoverLift(ui::Text("card"), 1.05));
  stage.inspector.hover(*stage.inspector.text("card"));
  stage.play(1);
  EXPECT_NEAR(stage.inspector.text("card")->scale(), 1.05, 1e-6);
  stage.inspector.leave();
  stage.play(1);
  EXPECT_NEAR(stage.inspector.text("card")->scale(), 1, 1e-6);
}

}  // namespace
}  // namespace tarnwick
