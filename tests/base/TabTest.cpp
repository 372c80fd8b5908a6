#include "base/Tab.h"

#include <gtest/gtest.h>

#include "base/LastPathComponent.h"

namespace tarnwick {
namespace {

TEST(Tab, ByName) {
  for (const Tab tab : allTabs) EXPECT_EQ(tabNamed(rawValue(tab)), tab);
  EXPECT_EQ(rawValue(Tab::claude), "claude");
  for (const char* name : {"", "Home", "home ", "settings"}) EXPECT_EQ(tabNamed(name), std::nullopt) << name;
}

TEST(LastPathComponent, NamesFiles) {
  const struct {
    const char *path, *name;
  } cases[] = {{"/src/shop", "shop"}, {"/src/shop//", "shop"}, {"shop", "shop"}, {"/", "/"}, {"///", "/"},
      {"", ""}, {"/a/.", "."}, {"/été", "été"}};
  for (const auto& c : cases) EXPECT_EQ(lastPathComponent(c.path), c.name) << c.path;
}

}  // namespace
}  // namespace tarnwick
