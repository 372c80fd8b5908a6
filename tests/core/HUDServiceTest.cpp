#include "core/HUDService.h"

#include <gtest/gtest.h>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using enum MediaKey;

class HUDServiceTest : public testing::Test {
 protected:
  HUDServiceTest() {
    desktop.audioDevices.levels[{1, AudioScope::output}] = {0.5, false};
    desktop.audioDevices.plug({{.id = 1, .name = "Speakers", .hasOutput = true}}, 1, 0);
    model.audio.start();
  }
  void start() { hud.emplace(model, desktop.ports); }
  bool press(MediaKey key) { return keys.send({.key = key}); }
  /// What the notch shows.
  std::optional<Transient> shown() { return model.transient; }
  static std::optional<Transient> indicator(HUDKind kind, double value) {
    return Transient::hud(kind, value);
  }
  MemoryAudioDevices::Levels& levels() { return desktop.audioDevices.levels[{1, AudioScope::output}]; }

  MemoryDesktop desktop;
  MemoryMediaKeys& keys = desktop.mediaKeys;
  NotchModel model{desktop.ports};
  std::optional<HUDService> hud;
};

TEST_F(HUDServiceTest, ChangesTheVolumeByKeys) {
  constexpr bool off = false, on = true;
  const struct {
    const char* what;
    double before;
    bool mutedBefore;
    MediaKeyEvent press;
    double after;
    bool mutedAfter;
  } cases[] = {
      {"up", 0.5, off, {.key = soundUp}, 0.5625, off},
      {"down", 0.5, off, {.key = soundDown}, 0.4375, off},
      {"finely", 0.5, off, {.key = soundDown, .shift = true, .alt = true}, 0.484375, off},
      {"Alt alone is no fine step", 0.5, off, {.key = soundUp, .alt = true}, 0.5625, off},
      {"nor is Shift", 0.5, off, {.key = soundUp, .shift = true}, 0.5625, off},
      {"at the top", 0.97, off, {.key = soundUp}, 1, off},
      {"amplified beyond the top", 1.5, off, {.key = soundUp}, 1.5, off},
      {"at the bottom", 0.03, off, {.key = soundDown}, 0, off},
      {"up unmutes", 0.5, on, {.key = soundUp}, 0.5625, off},
      {"down to silence stays muted", 0.05, on, {.key = soundDown}, 0, on},
      {"mute", 0.5, off, {.key = mute}, 0.5, on},
      {"unmute", 0.5, on, {.key = mute}, 0.5, off},
  };
  start();
  for (auto c : cases) {
    desktop.audioDevices.turn(1, AudioScope::output, {c.before, c.mutedBefore});
    for (const bool down : {true, false}) {
      c.press.down = down;
      EXPECT_TRUE(keys.send(c.press)) << c.what;
      EXPECT_EQ(levels().volume, c.after) << c.what << (down ? "" : ": released");
      EXPECT_EQ(levels().muted, c.mutedAfter) << c.what;
    }
    EXPECT_EQ(shown(),
        c.mutedAfter ? indicator(HUDKind::mute, 0) : indicator(HUDKind::volume, std::min(c.after, 1.0)))
        << c.what;
  }
}

TEST_F(HUDServiceTest, ChangesTheBrightnessByKeys) {
  const struct {
    double before;
    MediaKeyEvent press;
    double after;
    double unit = 1.0 / 1024;
  } cases[] = {{0.5, {.key = brightnessUp}, 0.5625},
      {0.5, {.key = brightnessDown, .shift = true, .alt = true}, 0.484375},
      {0.5, {.key = brightnessUp}, 0.625, 0.125}, {0.5, {.key = brightnessDown}, 0.375, 0.125},
      {0.03, {.key = brightnessDown}, 0}, {0.99, {.key = brightnessUp}, 1}};
  start();
  for (auto c : cases) {
    desktop.brightness.value = c.before;
    desktop.brightness.least = c.unit;
    for (const bool down : {true, false}) {
      c.press.down = down;
      EXPECT_TRUE(keys.send(c.press));
      EXPECT_EQ(desktop.brightness.value, c.after) << "a release does nothing";
    }
    EXPECT_EQ(shown(), indicator(HUDKind::brightness, c.after));
  }
  desktop.scheduler.advance(1.75);
  EXPECT_NE(shown(), std::nullopt);
  desktop.scheduler.advance(0.1);
  EXPECT_EQ(shown(), std::nullopt);
  desktop.brightness.value = std::nullopt;
  EXPECT_FALSE(press(brightnessUp)) << "a display that has just gone";
}

TEST_F(HUDServiceTest, ShowsVolumesThatOthersChangeWhileItHasTheKeys) {
  keys.trusted = false;
  start();
  desktop.audioDevices.turn(1, AudioScope::output, {0.7, false});
  EXPECT_EQ(shown(), std::nullopt) << "the desktop shows its own";
  keys.trusted = true;
  keys.tellChange();
  EXPECT_TRUE(hud->hasTap());
  desktop.audioDevices.turn(1, AudioScope::output, {0.8, false});
  EXPECT_EQ(shown(), indicator(HUDKind::volume, 0.8));
  desktop.audioDevices.turn(1, AudioScope::output, {0.8, true});
  EXPECT_EQ(shown(), indicator(HUDKind::mute, 0));
}

TEST_F(HUDServiceTest, HoldsTheKeysExactlyWhileTheyAreToBeReplacedAndCanBe) {
  const struct {
    const char* what;
    std::function<void()> change;
    bool sound, brightness;
  } steps[] = {
      {"not wanted from the start", [&] { model.settings.replaceHUD = false, start(); }, false, false},
      {"keys came free", [&] { keys.tellChange(); }, false, false},
      {"wanted", [&] { model.settings.replaceHUD = true; }, true, true},
      {"the panel cannot be changed", [&] { desktop.brightness.plug(std::nullopt); }, true, false},
      {"moved, and another program was quicker", [&] { keys.trusted = false, keys.tellChange(); }, false,
          false},
      {"came free", [&] { keys.trusted = true, keys.tellChange(); }, true, false},
      {"the panel can be changed", [&] { desktop.brightness.plug(0.5); }, true, true},
      {"not wanted", [&] { model.settings.replaceHUD = false; }, false, false},
  };
  for (const auto& step : steps) {
    step.change();
    EXPECT_EQ(hud->hasTap(), step.sound) << step.what;
    levels().volume = 0.5;
    model.audio.reload();
    EXPECT_EQ(press(soundUp), step.sound) << step.what;
    EXPECT_EQ(levels().volume, step.sound ? 0.5625 : 0.5) << step.what << ": caught once";
    EXPECT_EQ(press(brightnessUp), step.brightness) << step.what;
  }
  EXPECT_FALSE(hud->handleMediaKey({.key = soundUp})) << "one that was on its way";
  desktop.scheduler.advance(2);
  EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt) << "it waits for events only";
}

TEST_F(HUDServiceTest, AsksForPermissionOnceByItself) {
  const auto asked = [&] { return desktop.defaults.boolean("askedAccessibility"); };
  start();
  EXPECT_EQ(asked(), std::nullopt) << "it has the permission";
  EXPECT_EQ(keys.requests, 0);

  keys.trusted = false;
  EXPECT_TRUE(hud->isTrusted()) << "what it holds it may";
  model.settings.replaceHUD = false;
  start();
  EXPECT_FALSE(hud->isTrusted());
  EXPECT_EQ(keys.requests, 0) << "it needs none";
  model.settings.replaceHUD = true;
  start();
  EXPECT_EQ(keys.requests, 1);
  EXPECT_EQ(asked(), true);
  start();
  EXPECT_EQ(keys.requests, 1);
  hud->startTap(true);
  EXPECT_EQ(keys.requests, 2);
}

}  // namespace
}  // namespace tarnwick
