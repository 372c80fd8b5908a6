#include "linux/x11/X11Shortcuts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Rival.h"
#include "platform/TestDesktop.h"

using namespace tarnwick;
using testing::ElementsAre;

namespace {

TestDesktop& desktop() { return TestDesktop::shared(); }

constexpr unsigned shiftKey = 50, controlKey = 37, superKey = 133, capsLockKey = 66, numLockKey = 77,
                   nKey = 57, f9Key = 75, otherKey = 203;
using State = GlobalShortcuts::Result::State;

class X11ShortcutsTest : public testing::Test {
 protected:
  X11ShortcutsTest() {
    shortcuts.onPress = [this](const std::string& name) { presses.push_back(name); };
    desktop().hands.mapKey(otherKey, XCB_NO_SYMBOL);
  }
  void set(const std::map<std::string, std::string>& chords) {
    std::map<std::string, GlobalShortcuts::Wanted> wanted;
    for (const auto& [name, text] : chords) wanted[name] = {*KeyChord::parse(text), ""};
    shortcuts.set(wanted);
  }
  void type(const std::vector<unsigned>& keys) {
    for (const unsigned key : keys) desktop().hands.pressKey(key);
    for (const unsigned key : keys) desktop().hands.releaseKey(key);
  }
  State state(const std::string& name) const { return shortcuts.results->at(name).state; }

  X11Shortcuts shortcuts{desktop().connection(), desktop().scheduler};
  std::vector<std::string> presses;
};

TEST_F(X11ShortcutsTest, AreHeardWhateverElseIsOn) {
  set({{"plain", "Super+n"}, {"shifted", "Shift+Super+n"}, {"alone", "F9"}});
  for (const char* each : {"plain", "shifted", "alone"}) EXPECT_EQ(state(each), State::works) << each;
  for (const unsigned lock : {0u, capsLockKey, numLockKey}) {
    if (lock) desktop().hands.typeKey(lock);
    presses.clear();
    type({superKey, controlKey, nKey});
    // What is pressed in the instant of its release would be a repetition.
    type({f9Key});
    type({superKey, nKey});
    type({f9Key});
    type({shiftKey, superKey, nKey});
    EXPECT_TRUE(waitUntil([this] { return presses.size() >= 4; }));
    EXPECT_THAT(presses, ElementsAre("alone", "plain", "alone", "shifted")) << "with lock " << lock;
    if (lock) desktop().hands.typeKey(lock);
  }
  // Held, they are pressed once.
  presses.clear();
  desktop().hands.pressKey(f9Key);
  bool isOver = false;
  const Task wait = desktop().scheduler.after(0.9, [&] { isOver = true; });
  waitUntil([&] { return isOver; });
  desktop().hands.releaseKey(f9Key);
  EXPECT_THAT(presses, ElementsAre("alone"));

  shortcuts.pause(true);
  EXPECT_TRUE(Rival(nKey).hasKey);
  shortcuts.pause(false);
  EXPECT_FALSE(Rival(nKey).hasKey);
  set({});
  EXPECT_TRUE(Rival(nKey).hasKey);
}

TEST_F(X11ShortcutsTest, SayWhenAnotherProgramHasTheKeys) {
  auto rival = std::make_unique<Rival>(nKey);
  ASSERT_TRUE(rival->hasKey);
  set({{"toggle", "Super+n"}, {"next", "Super+F9"}, {"nowhere", "Super+Cyrillic_ef"}});
  EXPECT_EQ(state("toggle"), State::taken);
  EXPECT_EQ(state("next"), State::works);
  EXPECT_EQ(state("nowhere"), State::taken);
  rival.reset();
  EXPECT_TRUE(waitUntil([this] { return state("toggle") == State::works; })) << "had when they come free";
  type({superKey, nKey});
  EXPECT_TRUE(waitUntil([this] { return !presses.empty(); }));

  // The layout has changed.
  desktop().hands.mapKey(otherKey, 0x6c6);
  EXPECT_TRUE(waitUntil([this] { return state("nowhere") == State::works; }));
  presses.clear();
  type({superKey, otherKey});
  EXPECT_TRUE(waitUntil([this] { return !presses.empty(); }));
  EXPECT_THAT(presses, ElementsAre("nowhere"));
}

}  // namespace
