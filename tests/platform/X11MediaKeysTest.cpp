#include "linux/x11/X11MediaKeys.h"

#include <X11/XF86keysym.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Rival.h"
#include "platform/TestDesktop.h"

using namespace tarnwick;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TestDesktop& desktop() { return TestDesktop::shared(); }

using enum MediaKey;

// Keys that the server's layout leaves empty or that nobody misses.
constexpr unsigned upKey = 200, downKey = 201, muteKey = 202, brighterKey = 210, darkerKey = 211,
                   otherKey = 203;
constexpr unsigned shiftKey = 50, altKey = 64, capsLockKey = 66, numLockKey = 77;

const std::vector volumeKeys{soundUp, soundDown, mute};

class X11MediaKeysTest : public testing::Test {
 protected:
  X11MediaKeysTest() {
    // The layout has keys of its own for these.
    for (const unsigned key : {121, 122, 123, 232, 233}) desktop().hands.mapKey(key, XCB_NO_SYMBOL);
    desktop().hands.mapKey(upKey, XF86XK_AudioRaiseVolume);
    desktop().hands.mapKey(downKey, XF86XK_AudioLowerVolume);
    desktop().hands.mapKey(muteKey, XF86XK_AudioMute);
    desktop().hands.mapKey(brighterKey, XF86XK_MonBrightnessUp);
    desktop().hands.mapKey(darkerKey, XF86XK_MonBrightnessDown);
    desktop().hands.mapKey(otherKey, XCB_NO_SYMBOL);
  }

  std::optional<Subscription> tap(const std::vector<MediaKey>& which = volumeKeys) {
    return keys.tap(which, [this](const MediaKeyEvent& event) {
      presses.push_back(event);
      return true;
    });
  }
  bool hasPresses(size_t count) {
    return waitUntil([&] { return presses.size() >= count; });
  }
  /// All that the server has sent so far has been handled.
  void settle() {
    const auto reply = owned(xcb_get_input_focus_reply(
        desktop().connection(), xcb_get_input_focus(desktop().connection()), nullptr));
    bool turned = false;
    const Task turn = desktop().scheduler.after(0.01, [&] { turned = true; });
    waitUntil([&] { return turned; });
  }

  X11MediaKeys keys{desktop().connection(), desktop().scheduler};
  std::vector<MediaKeyEvent> presses;
};

}  // namespace

TEST_F(X11MediaKeysTest, CatchesKeysWhateverElseIsOn) {
  const auto held = tap();
  ASSERT_TRUE(held);
  const auto brightness = tap({brightnessUp, brightnessDown});
  ASSERT_TRUE(brightness);
  const struct {
    std::vector<unsigned> with;
    unsigned key;
    MediaKeyEvent press;
  } cases[] = {{{}, upKey, {.key = soundUp}}, {{}, brighterKey, {.key = brightnessUp}},
      {{}, darkerKey, {.key = brightnessDown}}, {{shiftKey}, downKey, {.key = soundDown, .shift = true}},
      {{altKey}, downKey, {.key = soundDown, .alt = true}},
      {{shiftKey, altKey}, downKey, {.key = soundDown, .shift = true, .alt = true}}};
  for (const unsigned lock : {0u, capsLockKey, numLockKey}) {
    if (lock) desktop().hands.typeKey(lock);
    for (const auto& c : cases) {
      presses.clear();
      for (const unsigned key : c.with) desktop().hands.pressKey(key);
      desktop().hands.typeKey(c.key);
      for (const unsigned key : c.with) desktop().hands.releaseKey(key);
      ASSERT_TRUE(hasPresses(2));
      MediaKeyEvent release = c.press;
      release.down = false;
      EXPECT_THAT(presses, ElementsAre(c.press, release)) << c.key << " with lock " << lock;
    }
    if (lock) desktop().hands.typeKey(lock);
  }
}

TEST_F(X11MediaKeysTest, AHeldKeyRepeatsButMuteDoesNot) {
  const auto held = tap();
  ASSERT_TRUE(held);
  desktop().hands.pressKey(upKey);
  EXPECT_TRUE(
      waitUntil([this] { return std::count(presses.begin(), presses.end(), MediaKeyEvent{soundUp}) >= 3; }));
  desktop().hands.releaseKey(upKey);
  settle();
  presses.clear();
  desktop().hands.pressKey(muteKey);
  // The server's repeats show as releases.
  EXPECT_TRUE(waitUntil([this] { return presses.size() >= 4; }));
  desktop().hands.releaseKey(muteKey);
  settle();
  EXPECT_EQ(std::count(presses.begin(), presses.end(), MediaKeyEvent{mute}), 1);
  presses.clear();
  desktop().hands.typeKey(muteKey);
  EXPECT_TRUE(hasPresses(2));
  EXPECT_EQ(presses.front(), MediaKeyEvent{mute}) << "pressed anew";
}

TEST_F(X11MediaKeysTest, HasAllKeysOrNone) {
  EXPECT_TRUE(keys.isTrusted(volumeKeys)) << "nobody has them";
  EXPECT_TRUE(Rival(upKey).hasKey) << "nor has this program, only for having looked";
  auto rival = std::make_unique<Rival>(muteKey);
  ASSERT_TRUE(rival->hasKey);
  EXPECT_FALSE(keys.isTrusted(volumeKeys));
  EXPECT_FALSE(tap());
  EXPECT_TRUE(waitUntil([] { return Rival(upKey).hasKey; })) << "what it did get is free again";
  const auto brightness = tap({brightnessUp, brightnessDown});
  EXPECT_TRUE(brightness);
  EXPECT_FALSE(keys.isTrusted(volumeKeys)) << "other keys say nothing about these";
  EXPECT_TRUE(keys.isTrusted({brightnessUp}));
  desktop().hands.typeKey(brighterKey);
  EXPECT_TRUE(hasPresses(2)) << "caught still";
}

TEST_F(X11MediaKeysTest, TellsWhenKeysComeFree) {
  std::optional<Subscription> held;
  const auto observer = keys.observe([&] { held = tap(); });
  for (const bool ends : {true, false}) {
    auto rival = std::make_unique<Rival>(muteKey);
    ASSERT_TRUE(rival->hasKey);
    ASSERT_FALSE(tap());
    ends ? rival.reset() : rival->letGo();
    EXPECT_TRUE(waitUntil([&] { return held.has_value(); })) << ends;
    EXPECT_FALSE(Rival(upKey).hasKey);
    held.reset();
    EXPECT_TRUE(waitUntil([] { return Rival(upKey).hasKey; })) << "let go of";
  }
}

TEST_F(X11MediaKeysTest, TellsWhenKeysHaveMoved) {
  settle();
  int moves = 0;
  auto held = tap();
  const auto observer = keys.observe([&] {
    ++moves;
    held.reset();
    held = tap();
  });
  desktop().hands.mapKey(otherKey, XF86XK_AudioRaiseVolume);
  ASSERT_TRUE(waitUntil([&] { return moves > 0; }));
  desktop().hands.typeKey(otherKey);
  ASSERT_TRUE(hasPresses(2));
  EXPECT_THAT(presses, ElementsAre(MediaKeyEvent{soundUp}, MediaKeyEvent{.key = soundUp, .down = false}));
}
