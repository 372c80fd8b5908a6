#include <gmock/gmock.h>

#include <algorithm>

#include "support/ForcedLanguage.h"
#include "views/HUDAppearance.h"
#include "views/NotchStage.h"

namespace tarnwick {
namespace {

using testing::ElementsAreArray;

TEST(HUDAppearance, ChoosesTheSymbolByTheLevel) {
  struct {
    HUDKind kind;
    double level;
    const char* expected;
  } const cases[] = {
      {HUDKind::volume, 0, "speaker.fill"},
      {HUDKind::volume, 0.339, "speaker.wave.1.fill"},
      {HUDKind::volume, 0.34, "speaker.wave.2.fill"},
      {HUDKind::volume, 0.67, "speaker.wave.3.fill"},
      {HUDKind::mute, 0.5, "speaker.slash.fill"},
      {HUDKind::brightness, 0.49, "sun.min.fill"},
      {HUDKind::brightness, 0.5, "sun.max.fill"},
  };
  for (const auto& c : cases) EXPECT_EQ(hudSymbol(c.kind, c.level), c.expected) << c.level;
}

TEST(HUDAppearance, GoesFromGreenOverOrangeToRed) {
  struct {
    double level, hue;
  } const cases[] = {{-1, 0.33}, {0, 0.33}, {0.325, 0.205}, {0.65, 0.08}, {0.825, 0.04}, {1, 0}, {7, 0}};
  for (const auto& c : cases) {
    const Color tint = hudTint(HUDKind::volume, c.level), expected = hsb(c.hue, 0.85, 0.95);
    EXPECT_NEAR(tint.red, expected.red, 1e-9) << c.level;
    EXPECT_NEAR(tint.green, expected.green, 1e-9) << c.level;
    EXPECT_NEAR(tint.blue, expected.blue, 1e-9) << c.level;
  }
  EXPECT_EQ(hudTint(HUDKind::brightness, 0.9), white());
}

const struct Case {
  Transient transient;
  std::vector<std::string> symbols, english, french;
} cases[] = {
    {Transient::hud(HUDKind::volume, 0.2), {"speaker.wave.1.fill"}, {"Volume"}, {"Volume"}},
    {Transient::hud(HUDKind::mute, 0.2), {"speaker.slash.fill"}, {"Volume"}, {"Volume"}},
    {Transient::hud(HUDKind::brightness, 0.5), {"sun.max.fill"}, {"Brightness"}, {"Luminosité"}},
    {Transient::power(true, 76), {"bolt.fill", "bolt.fill"}, {"Charging", "76 %"}, {"En charge", "76 %"}},
    {Transient::power(false, 100), {"powerplug.fill"}, {"Unplugged", "100 %"}, {"Débranché", "100 %"}},
    {Transient::lowPowerMode(true), {"leaf.fill"}, {"Low Power", "On"}, {"Éco. énergie", "Activé"}},
    {Transient::lowPowerMode(false), {"leaf.fill"}, {"Low Power", "Off"}, {"Éco. énergie", "Désactivé"}},
    {Transient::device("Buds", "airpodspro", 84, true), {"airpodspro"}, {"Buds", "84"}, {"Buds", "84"}},
    {Transient::device("Keys", "keyboard", {}, true), {"keyboard"}, {"Keys", "Connected"},
        {"Keys", "Connecté"}},
    {Transient::device("Keys", "keyboard", {}, false), {"keyboard"}, {"Keys", "Disconnected"},
        {"Keys", "Déconnecté"}},
};

/// Everything stands in the wings, clear of the camera and of the surface's ends.
void expectClearOfTheCamera(const NotchStage& stage) {
  const Rect surface = stage.inspect.id(surfaceId)->frame();
  // Everything stands on whole pixels, the camera of odd width does not.
  constexpr double snap = 0.51, cameraLeft = 470 - 185 / 2.0, cameraRight = 470 + 185 / 2.0;
  for (const auto& found : stage.inspect.all([](const auto& each) { return each.children().empty(); })) {
    const Rect frame = found.frame();
    if (frame.width > 100 || found.kind() == "Dynamic")
      continue;  // the surface's own black, and what is empty
    const bool left = frame.x >= surface.x + 6 + 9.9 && frame.right() <= cameraLeft + snap;
    const bool right = frame.x >= cameraRight - snap && frame.right() <= surface.right() - 6 - 9.9;
    EXPECT_TRUE(left || right) << found.kind() << " " << found.content() << " at " << frame.x;
  }
}

TEST(Indicators, TellInBothLanguagesWhatHappenedBesideTheCamera) {
  for (const Case& c : cases) {
    for (const bool french : {false, true}) {
      const ForcedLanguage language(french ? "fr" : "en");
      NotchStage stage;
      stage.model.show(c.transient, 10);
      stage.settle();
      EXPECT_THAT(stage.inspect.symbols(), ElementsAreArray(c.symbols));
      EXPECT_THAT(stage.inspect.texts(), ElementsAreArray(french ? c.french : c.english));
      for (const std::string& name : stage.inspect.symbols()) EXPECT_TRUE(ui::isSymbol(name)) << name;
      expectClearOfTheCamera(stage);
    }
  }
  NotchStage stage;
  stage.model.show(Transient::device(std::string(60, 'W'), "keyboard", {}, true), 10);
  stage.settle();
  expectClearOfTheCamera(stage);
}

/// How much of the level bar is filled, in points.
double filledWidth(const NotchStage& stage) {
  std::vector<double> widths;
  for (const auto& found : stage.inspect.kind("Shape")) {
    if (found.targetFrame().height == 6) widths.push_back(found.frame().width);
  }
  EXPECT_EQ(widths.size(), 2u);
  return widths.empty() ? -1 : widths.back();
}

TEST(Indicators, FillTheBarToTheLevel) {
  struct {
    Transient transient;
    double expected;
  } const levels[] = {
      {Transient::hud(HUDKind::volume, 0.5), 37},
      {Transient::hud(HUDKind::mute, 0.5), 0},
      {Transient::hud(HUDKind::brightness, 1), 74},
      {Transient::hud(HUDKind::volume, 0), 0},
  };
  for (const auto& c : levels) {
    NotchStage stage;
    stage.model.show(c.transient, 10);
    stage.settle();
    EXPECT_NEAR(filledWidth(stage), c.expected, 0.5) << c.transient.key();
  }
}

TEST(Indicators, MoveTheBarInPlaceAndReplaceAnotherKind) {
  NotchStage stage;
  stage.model.show(Transient::hud(HUDKind::volume, 0.2), 10);
  stage.settle();
  const Rect text = stage.inspect.text("Volume")->frame();

  stage.model.show(Transient::hud(HUDKind::volume, 0.8), 10);
  stage.play(0.08);
  EXPECT_GT(filledWidth(stage), 0.2 * 74 + 1);
  EXPECT_LT(filledWidth(stage), 0.8 * 74 - 1);
  EXPECT_EQ(stage.inspect.text("Volume")->opacity(), 1);
  EXPECT_EQ(stage.inspect.text("Volume")->frame(), text);

  stage.model.show(Transient::hud(HUDKind::brightness, 0.8), 10);
  stage.play(0.05);
  const auto leaving =
      stage.inspect.first([](const auto& found) { return found.isLeaving() && found.content() == "Volume"; });
  ASSERT_TRUE(leaving);
  // Back towards the camera, while the new one waits there for its turn.
  EXPECT_GT(leaving->frame().x, text.x);
  EXPECT_LT(stage.inspect.text("Brightness")->opacity(), 0.05);
  stage.settle();
  EXPECT_EQ(stage.inspect.text("Brightness")->opacity(), 1);
}

TEST(Indicators, ColourTheBatteryByItsLevel) {
  struct {
    Transient transient;
    Color expected;
    double width;
  } const levels[] = {
      {Transient::power(false, 20), colors::red, 3.6},
      {Transient::power(false, 21), colors::green, 3.78},
      {Transient::power(true, 5), colors::green, 2},
      {Transient::power(false, 0), colors::red, 2},
      {Transient::power(false, 100), colors::green, 18},
  };
  for (const auto& c : levels) {
    NotchStage stage;
    stage.model.show(c.transient, 10);
    stage.settle();
    const auto fill = stage.inspect.first(
        [](const auto& found) { return found.kind() == "Shape" && found.targetFrame().height == 7; });
    ASSERT_TRUE(fill);
    EXPECT_EQ(fill->color(), c.expected);
    EXPECT_NEAR(fill->frame().width, c.width, 1e-6);
  }
}

}  // namespace
}  // namespace tarnwick
