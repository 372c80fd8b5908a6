#include "linux/x11/X11MediaKeys.h"

#include <X11/XF86keysym.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/TestDesktop.h"

using namespace tarnwick;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TestDesktop& desktop() { return TestDesktop::shared(); }

// Keys that the server's layout leaves empty or that nobody misses.
constexpr unsigned upKey = 200, downKey = 201, muteKey = 202, otherKey = 203;
constexpr unsigned shiftKey = 50, altKey = 64, capsLockKey = 66, numLockKey = 77;

struct Press {
  int code;
  bool down;
  unsigned flags;
  friend bool operator==(const Press&, const Press&) = default;
};

class X11MediaKeysTest : public testing::Test {
 protected:
  X11MediaKeysTest() {
    // The layout has keys of its own for these.
    const xcb_setup_t* setup = xcb_get_setup(desktop().connection());
    for (unsigned key = setup->min_keycode; key < upKey; ++key) {
      if (key == 121 || key == 122 || key == 123) desktop().hands.mapKey(key, XCB_NO_SYMBOL);
    }
    desktop().hands.mapKey(upKey, XF86XK_AudioRaiseVolume);
    desktop().hands.mapKey(downKey, XF86XK_AudioLowerVolume);
    desktop().hands.mapKey(muteKey, XF86XK_AudioMute);
    desktop().hands.mapKey(otherKey, XCB_NO_SYMBOL);
  }

  std::optional<Subscription> tap() {
    return keys.tap({mediakey::soundUp, mediakey::soundDown, mediakey::mute},
                    [this](int code, bool down, unsigned flags) {
                      presses.push_back({code, down, flags});
                      return true;
                    });
  }
  bool hasPresses(size_t count) {
    return waitUntil([&] { return presses.size() >= count; });
  }
  /// All that the server has sent so far has been handled.
  void settle() {
    const auto reply = owned(xcb_get_input_focus_reply(desktop().connection(),
                                                       xcb_get_input_focus(desktop().connection()), nullptr));
    bool turned = false;
    const Task turn = desktop().scheduler.after(0.01, [&] { turned = true; });
    waitUntil([&] { return turned; });
  }

  X11MediaKeys keys{desktop().connection(), desktop().scheduler};
  std::vector<Press> presses;
};

/// Another program that has grabbed a key.
class Rival {
 public:
  explicit Rival(unsigned keycode) : connection_(X11Connection::open()) {
    X11Connection& c = *connection_;
    const auto cookie =
        xcb_grab_key_checked(c, 0, c.root(), XCB_MOD_MASK_ANY, static_cast<xcb_keycode_t>(keycode),
                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    hasKey = owned(xcb_request_check(c, cookie)) == nullptr;
  }

  bool hasKey;

 private:
  std::unique_ptr<X11Connection> connection_;
};

}  // namespace

TEST_F(X11MediaKeysTest, CatchesKeysWhateverElseIsOn) {
  const auto held = tap();
  ASSERT_TRUE(held);
  EXPECT_TRUE(keys.isTrusted());
  constexpr unsigned shift = modifierflag::shift, option = modifierflag::option;
  const struct {
    std::vector<unsigned> with;
    unsigned flags;
  } cases[] = {{{}, 0}, {{shiftKey}, shift}, {{altKey}, option}, {{shiftKey, altKey}, shift | option}};
  for (const unsigned lock : {0u, capsLockKey, numLockKey}) {
    if (lock) desktop().hands.typeKey(lock);
    for (const auto& c : cases) {
      presses.clear();
      for (const unsigned key : c.with) desktop().hands.pressKey(key);
      desktop().hands.typeKey(downKey);
      for (const unsigned key : c.with) desktop().hands.releaseKey(key);
      ASSERT_TRUE(hasPresses(2));
      EXPECT_THAT(presses, ElementsAre(Press{mediakey::soundDown, true, c.flags},
                                       Press{mediakey::soundDown, false, c.flags}))
          << lock;
    }
    if (lock) desktop().hands.typeKey(lock);
  }
}

TEST_F(X11MediaKeysTest, AHeldKeyRepeatsButMuteDoesNot) {
  const auto held = tap();
  ASSERT_TRUE(held);
  desktop().hands.pressKey(upKey);
  EXPECT_TRUE(waitUntil([this] {
    return std::count(presses.begin(), presses.end(), Press{0, true, 0}) >= 3;
  }));
  desktop().hands.releaseKey(upKey);
  settle();
  presses.clear();
  desktop().hands.pressKey(muteKey);
  // The server's repeats show as releases.
  EXPECT_TRUE(waitUntil([this] { return presses.size() >= 4; }));
  desktop().hands.releaseKey(muteKey);
  settle();
  EXPECT_EQ(std::count(presses.begin(), presses.end(), Press{mediakey::mute, true, 0}), 1);
  presses.clear();
  desktop().hands.typeKey(muteKey);
  EXPECT_TRUE(hasPresses(2));
  EXPECT_EQ(presses.front(), (Press{mediakey::mute, true, 0})) << "pressed anew";
}

TEST_F(X11MediaKeysTest, HasAllKeysOrNone) {
  auto rival = std::make_unique<Rival>(muteKey);
  EXPECT_FALSE(tap());
  EXPECT_FALSE(keys.isTrusted());
  EXPECT_TRUE(waitUntil([] { return Rival(upKey).hasKey; })) << "what it did get is free again";
  rival.reset();
  std::optional<Subscription> held;
  EXPECT_TRUE(waitUntil([&] { return (held = tap()).has_value(); }))
      << "the server notices the end a little later";
  EXPECT_TRUE(keys.isTrusted());
  EXPECT_FALSE(Rival(upKey).hasKey);
  held.reset();
  EXPECT_TRUE(waitUntil([] { return Rival(upKey).hasKey; })) << "let go of";
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
  EXPECT_THAT(presses, ElementsAre(Press{mediakey::soundUp, true, 0}, Press{mediakey::soundUp, false, 0}));
}
