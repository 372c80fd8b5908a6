#include "core/HUDService.h"

#include <gtest/gtest.h>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using mediakey::brightnessDown;
using mediakey::brightnessUp;
using mediakey::mute;
using mediakey::soundDown;
using mediakey::soundUp;

constexpr unsigned fine = modifierflag::option | modifierflag::shift;
constexpr int playPause = 16;

class HUDServiceTest : public testing::Test {
 protected:
  HUDServiceTest() {
    desktop.audioDevices.levels[{1, AudioScope::output}] = {0.5, false};
    desktop.audioDevices.plug({{.id = 1, .name = "Speakers", .hasOutput = true}}, 1, 0);
    model.audio.start();
  }
  void start() { hud.emplace(model, desktop.ports); }
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
  const struct {
    const char* what;
    double before;
    bool mutedBefore;
    int key;
    unsigned flags;
    double after;
    bool mutedAfter;
  } cases[] = {
      {"up", 0.5, false, soundUp, 0, 0.5625, false},
      {"down", 0.5, false, soundDown, 0, 0.4375, false},
      {"finely", 0.5, false, soundDown, fine, 0.484375, false},
      {"Alt alone is no fine step", 0.5, false, soundUp, modifierflag::option, 0.5625, false},
      {"nor is Shift", 0.5, false, soundUp, modifierflag::shift, 0.5625, false},
      {"at the top", 0.97, false, soundUp, 0, 1, false},
      {"at the bottom", 0.03, false, soundDown, 0, 0, false},
      {"up unmutes", 0.5, true, soundUp, 0, 0.5625, false},
      {"down to silence stays muted", 0.05, true, soundDown, 0, 0, true},
      {"mute", 0.5, false, mute, 0, 0.5, true},
      {"unmute", 0.5, true, mute, 0, 0.5, false},
  };
  start();
  for (const auto& c : cases) {
    desktop.audioDevices.turn(1, AudioScope::output, {c.before, c.mutedBefore});
    EXPECT_TRUE(keys.press(c.key, c.flags)) << c.what;
    EXPECT_EQ(levels().volume, c.after) << c.what;
    EXPECT_EQ(levels().muted, c.mutedAfter) << c.what;
    EXPECT_EQ(shown(), c.mutedAfter ? indicator(HUDKind::mute, 0) : indicator(HUDKind::volume, c.after))
        << c.what;
    EXPECT_TRUE(keys.send(c.key, false, c.flags)) << c.what << ": released";
    EXPECT_EQ(levels().volume, c.after) << c.what << ": released";
  }
}

TEST_F(HUDServiceTest, ChangesTheBrightnessByKeys) {
  const struct {
    double before;
    int key;
    unsigned flags;
    double after;
  } cases[] = {{0.5, brightnessUp, 0, 0.5625},
               {0.5, brightnessDown, fine, 0.484375},
               {0.03, brightnessDown, 0, 0},
               {0.99, brightnessUp, 0, 1}};
  start();
  for (const auto& c : cases) {
    desktop.brightness.value = c.before;
    EXPECT_TRUE(keys.press(c.key, c.flags));
    EXPECT_EQ(desktop.brightness.value, c.after);
    EXPECT_EQ(shown(), indicator(HUDKind::brightness, c.after));
    EXPECT_TRUE(keys.send(c.key, false, c.flags));
    EXPECT_EQ(desktop.brightness.value, c.after) << "a release does nothing";
  }
  desktop.scheduler.advance(1.75);
  EXPECT_NE(shown(), std::nullopt);
  desktop.scheduler.advance(0.1);
  EXPECT_EQ(shown(), std::nullopt);
  desktop.brightness.value = std::nullopt;
  EXPECT_FALSE(keys.press(brightnessUp)) << "a display that has gone";
}

TEST_F(HUDServiceTest, LeavesBrightnessKeysToTheDesktopUntilThereIsABrightness) {
  desktop.brightness.value = std::nullopt;
  start();
  EXPECT_FALSE(keys.press(brightnessUp));
  EXPECT_TRUE(keys.press(soundUp));
  desktop.brightness.value = 0.5;
  desktop.scheduler.advance(2);
  EXPECT_TRUE(keys.press(brightnessUp));
  EXPECT_FALSE(hud->handleMediaKey(playPause, true, 0));
}

TEST_F(HUDServiceTest, ShowsVolumesThatOthersChangeWhileItHasTheKeys) {
  keys.trusted = false;
  start();
  desktop.audioDevices.turn(1, AudioScope::output, {0.7, false});
  EXPECT_EQ(shown(), std::nullopt) << "the desktop shows its own";
  keys.trusted = true;
  desktop.scheduler.advance(2);
  EXPECT_TRUE(hud->hasTap());
  desktop.audioDevices.turn(1, AudioScope::output, {0.8, false});
  EXPECT_EQ(shown(), indicator(HUDKind::volume, 0.8));
  desktop.audioDevices.turn(1, AudioScope::output, {0.8, true});
  EXPECT_EQ(shown(), indicator(HUDKind::mute, 0));
}

TEST_F(HUDServiceTest, HoldsTheKeysExactlyWhileTheyAreToBeReplaced) {
  model.settings.replaceHUD = false;
  start();
  EXPECT_FALSE(hud->hasTap());
  desktop.scheduler.advance(10);
  EXPECT_FALSE(keys.press(soundUp));
  model.settings.replaceHUD = true;
  EXPECT_TRUE(keys.press(soundUp));
  EXPECT_TRUE(keys.press(brightnessUp));
  model.settings.replaceHUD = false;
  EXPECT_FALSE(keys.press(soundUp));
  EXPECT_FALSE(keys.press(brightnessUp));
  EXPECT_FALSE(hud->handleMediaKey(soundUp, true, 0)) << "one that was on its way";
  desktop.scheduler.advance(10);
  EXPECT_FALSE(hud->hasTap());
}

TEST_F(HUDServiceTest, CatchesKeysThatHaveMoved) {
  start();
  keys.trusted = false;
  keys.move();
  EXPECT_FALSE(hud->hasTap()) << "another program was quicker";
  keys.trusted = true;
  desktop.scheduler.advance(2);
  EXPECT_TRUE(keys.press(soundUp));
  EXPECT_EQ(levels().volume, 0.5625) << "caught once";
}

TEST_F(HUDServiceTest, AsksForPermissionOnceByItself) {
  const auto asked = [&] { return desktop.defaults.boolean("askedAccessibility"); };
  start();
  EXPECT_EQ(asked(), std::nullopt) << "it has the permission";
  EXPECT_EQ(keys.requests, 0);

  keys.trusted = false;
  model.settings.replaceHUD = false;
  start();
  EXPECT_EQ(keys.requests, 0) << "it needs none";
  model.settings.replaceHUD = true;
  start();
  EXPECT_EQ(keys.requests, 1);
  EXPECT_EQ(asked(), true);
  start();
  desktop.scheduler.advance(10);
  EXPECT_EQ(keys.requests, 1);
  hud->startTap(true);
  EXPECT_EQ(keys.requests, 2);
}

}  // namespace
}  // namespace tarnwick
