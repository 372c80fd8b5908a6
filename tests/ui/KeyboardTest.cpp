#include <gtest/gtest.h>

#include <QImage>

#include "ui/Button.h"
#include "ui/Slider.h"
#include "ui/Stage.h"
#include "ui/paint/Painter.h"

namespace tarnwick::ui {
namespace {

View control(
    const std::string& name, std::function<void()> action = [] {}) {
  return Rectangle()
      .fill(black())
      .frame({.width = 40, .height = 20})
      .onTap(std::move(action))
      .accessibility(Role::button, name);
}

std::string focused(const Stage& stage) {
  const auto found = stage.inspect.focused();
  return found ? found->interaction()->accessibilityName : "";
}

TEST(Keyboard, movesTheFocusAsKeysDoElsewhere) {
  bool extra = true;
  Stage stage([&] {
    Views rows;
    for (int i = 0; i < 20; ++i) rows.push_back(control("row " + std::to_string(i)));
    return VStack({},
        {HStack({}, {control("home"), control("audio").accessibilityChecked(true), control("notes")})
                .arrowKeys(Axis::horizontal),
            control("off").allowsHitTesting(false), extra ? control("extra") : View(),
            ScrollView(Axis::vertical, VStack({}, rows).arrowKeys(Axis::vertical))
                .frame({.width = 60, .height = 60})});
  });
  const struct {
    Key key;
    bool shift, used;
    const char* expected;
  } steps[] = {
      {Key::right, false, false, ""},
      {Key::tab, false, true, "audio"},  // the one that is on stands for its row
      {Key::right, false, true, "notes"},
      {Key::right, false, true, "notes"},
      {Key::home, false, true, "home"},
      {Key::down, false, false, "home"},
      {Key::tab, false, true, "extra"},
      {Key::tab, false, true, "row 0"},
      {Key::end, false, true, "row 19"},
      {Key::up, false, true, "row 18"},
      {Key::tab, false, true, "audio"},
      {Key::tab, true, true, "row 0"},
      {Key::tab, true, true, "extra"},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.expected);
    EXPECT_EQ(stage.inspect.key(step.key, {.shift = step.shift}), step.used);
    stage.scene.frame();
    EXPECT_EQ(focused(stage), step.expected);
    if (!focused(stage).empty() && focused(stage) != "off") {
      const Rect frame = stage.inspect.focused()->frame();
      EXPECT_TRUE(frame.y >= 0 && frame.bottom() <= 300) << "it has scrolled into view: " << frame.y;
    }
  }
  stage.change([&] { extra = false; });
  EXPECT_EQ(focused(stage), "");
}

TEST(Keyboard, operatesTheControlWithTheFocus) {
  int taps = 0;
  double value = 0.5;
  std::string keys;
  Stage stage([&] {
    return VStack({},
        {control("button", [&] { ++taps; }).onKey(Key::escape, [&] { keys += "inner "; }),
            Slider({.name = "volume", .value = value, .step = 0.2, .changed = [&](double v) { value = v; }})
                .frame({.width = 100})})
        .onKey(Key::escape, [&] { keys += "outer "; });
  });
  EXPECT_TRUE(stage.inspect.key(Key::escape));
  EXPECT_EQ(keys, "outer ") << "what is no control, while nobody has the focus";
  stage.inspect.key(Key::tab);
  stage.inspect.key(Key::escape);
  EXPECT_EQ(keys, "outer inner ");
  for (const Key key : {Key::enter, Key::space}) EXPECT_TRUE(stage.inspect.key(key));
  EXPECT_EQ(taps, 2);
  EXPECT_FALSE(stage.inspect.key(Key::enter, {.control = true}));
  stage.inspect.key(Key::tab);
  keys.clear();
  stage.inspect.key(Key::escape);
  EXPECT_EQ(keys, "outer ") << "what is around the focus";
  const struct {
    Key key;
    double expected;
  } steps[] = {{Key::right, 0.7}, {Key::up, 0.9}, {Key::right, 1}, {Key::left, 0.8}, {Key::home, 0},
      {Key::down, 0}, {Key::end, 1}, {Key::pageDown, 0}};
  for (const auto& step : steps) {
    EXPECT_TRUE(stage.inspect.key(step.key));
    stage.change([] {});
    EXPECT_NEAR(value, step.expected, 1e-9);
  }
}

TEST(Keyboard, showsARingOnlyForKeysAndOnlyWhileTheWindowHasThem) {
  Stage stage(control("only"));
  const auto ring = [&] {
    stage.scene.frame();
    QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
    paint(stage.scene, image, {0, 0, 400, 300});
    return qBlue(image.pixel(200, 141)) > 200;
  };
  stage.inspect.tap(*stage.inspect.control("only"));
  EXPECT_EQ(focused(stage), "only");
  EXPECT_FALSE(ring());
  stage.inspect.key(Key::tab);
  EXPECT_TRUE(ring());
  stage.scene.input().keyboardChanged(false);
  EXPECT_FALSE(ring());
  stage.scene.input().keyboardChanged(true);
  EXPECT_TRUE(ring());
}

}  // namespace
}  // namespace tarnwick::ui
