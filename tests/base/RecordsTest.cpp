#include "base/Records.h"

#include <gtest/gtest.h>

#include "base/LastPathComponent.h"

namespace tarnwick {
namespace {

TEST(Records, TabsByName) {
  for (const Tab tab : allTabs) EXPECT_EQ(tabNamed(rawValue(tab)), tab);
  EXPECT_EQ(rawValue(Tab::claude), "claude");
  for (const char* name : {"", "Home", "home ", "settings"}) EXPECT_EQ(tabNamed(name), std::nullopt) << name;
}

TEST(Records, KeysOfTransients) {
  const struct {
    Transient transient;
    const char* key;
  } cases[] = {
      {Transient::hud(HUDKind::volume, 0.5), "volume"},
      {Transient::hud(HUDKind::mute, 0), "volume"},
      {Transient::hud(HUDKind::brightness, 1), "brightness"},
      {Transient::power(true, 7), "power"},
      {Transient::lowPowerMode(false), "lowpower"},
      {Transient::device("Mouse", "mouse", 3, true), "device-Mouse-true"},
      {Transient::device("", "", {}, false), "device--false"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.transient.key(), c.key);
}

TEST(Records, BannersAreAllDifferent) { EXPECT_NE(Banner{}, Banner{}); }

TEST(LastPathComponent, NamesFiles) {
  const struct {
    const char *path, *name;
  } cases[] = {
      {"/src/shop", "shop"}, {"/src/shop//", "shop"}, {"shop", "shop"}, {"/", "/"}, {"///", "/"}, {"", ""},
      {"/a/.", "."},         {"/été", "été"}};
  for (const auto& c : cases) EXPECT_EQ(lastPathComponent(c.path), c.name) << c.path;
}

}  // namespace
}  // namespace tarnwick
