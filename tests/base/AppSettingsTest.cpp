#include "base/AppSettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

const struct {
  const char* key;
  AppSettings::Flag AppSettings::*flag;
  bool fallback;
} flags[] = {
    {"expandOnHover.v2", &AppSettings::expandOnHover, false},
    {"hideInFullscreen", &AppSettings::hideInFullscreen, true},
    {"haptics", &AppSettings::haptics, true},
    {"showNowPlaying", &AppSettings::showNowPlaying, true},
    {"replaceHUD", &AppSettings::replaceHUD, true},
    {"batteryAlerts", &AppSettings::batteryAlerts, true},
    {"bluetoothAlerts", &AppSettings::bluetoothAlerts, true},
    {"calendarEnabled", &AppSettings::calendarEnabled, true},
    {"claudeSounds", &AppSettings::claudeSounds, true},
    {"answerPermissions", &AppSettings::answerPermissions, true},
};

TEST(AppSettings, EachSwitchIsStoredUnderItsKey) {
  for (const auto& [key, flag, fallback] : flags) {
    MemoryUserDefaults defaults;
    AppSettings settings(defaults);
    EXPECT_EQ(settings.*flag, fallback) << key;
    EXPECT_TRUE(defaults.writes.empty()) << "reading writes nothing";
    settings.*flag = !fallback;
    EXPECT_EQ(defaults.boolean(key), !fallback) << key;
    const AppSettings restarted(defaults);
    for (const auto& other : flags) {
      EXPECT_EQ(restarted.*other.flag, other.fallback != (other.flag == flag)) << key << " " << other.key;
    }
  }
}

TEST(AppSettings, OtherTypesAndKeysCountForNothing) {
  MemoryUserDefaults defaults;
  for (const auto& flag : flags) defaults.values[flag.key] = std::string(flag.fallback ? "false" : "true");
  defaults.values["haptics"] = 0.0;
  defaults.values["expandOnHover"] = true;
  const AppSettings settings(defaults);
  for (const auto& flag : flags) EXPECT_EQ(settings.*flag.flag, flag.fallback) << flag.key;
}

TEST(AppSettings, StoresEveryAssignmentAndTellsOfChanges) {
  MemoryUserDefaults defaults;
  AppSettings settings(defaults);
  int changes = 0;
  const auto subscription = settings.observe([&] { ++changes; });
  settings.haptics = true;
  EXPECT_EQ(changes, 0);
  settings.haptics = false;
  EXPECT_EQ(changes, 1);
  settings.claudeSounds = settings.haptics;
  EXPECT_EQ(changes, 2);
  EXPECT_THAT(defaults.writes, testing::ElementsAre("haptics", "haptics", "claudeSounds"));
}

}  // namespace
}  // namespace tarnwick
