#include "core/ShortcutService.h"

#include <gmock/gmock.h>

#include "support/MemoryDesktop.h"
#include "support/MemoryShortcuts.h"

namespace tarnwick {
namespace {

using Chords = std::map<std::string, std::string>;

TEST(ShortcutService, SetsWhatThePreferencesName) {
  MemoryDesktop desktop;
  std::vector<std::string> acts;
  MemoryShortcuts shortcuts;
  AppSettings settings(desktop.defaults);
  ShortcutService service(settings, shortcuts, [&](const std::string& action) { acts.push_back(action); });
  service.start();
  EXPECT_EQ(shortcuts.sets + shortcuts.looks, 0) << "none is set: nothing is asked";
  service.assign("toggle", KeyChord::parse("Super+n"));
  EXPECT_EQ(shortcuts.chords, (Chords{{"toggle", "Super+n"}}));
  settings.haptics = false;
  EXPECT_EQ(shortcuts.sets, 1) << "nothing of theirs has changed";
  service.assign("next", KeyChord::parse("Super+n"));
  EXPECT_EQ(shortcuts.chords, (Chords{{"next", "Super+n"}})) << "the same keys do one thing";
  shortcuts.onPress("next");
  EXPECT_THAT(acts, testing::ElementsAre("next"));

  service.pause(true);
  EXPECT_TRUE(shortcuts.isPaused);
  service.assign("next", std::nullopt);
  EXPECT_EQ(shortcuts.chords, (Chords{{"next", "Super+n"}})) << "not while it is being recorded";
  service.pause(false);
  EXPECT_FALSE(shortcuts.isPaused);
  EXPECT_TRUE(shortcuts.chords.empty());

  // What somebody has written to the file.
  desktop.defaults.values["toggleShortcut"] = std::vector<std::string>{"Ctrl+F5"};
  desktop.defaults.values["nextShortcut"] = std::vector<std::string>{"n"};
  AppSettings edited(desktop.defaults);
  ShortcutService restarted(edited, shortcuts, {});
  restarted.start();
  EXPECT_EQ(shortcuts.chords, (Chords{{"toggle", "Ctrl+F5"}})) << "a letter is typed with";
}

}  // namespace
}  // namespace tarnwick
