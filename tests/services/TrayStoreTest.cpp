#include "services/TrayStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Paths = std::vector<std::string>;

class TrayStoreTest : public testing::Test {
 protected:
  Paths stored() const { return desktop.defaults.strings("trayItems").value_or(Paths{"(nothing stored)"}); }

  MemoryDesktop desktop;
  const TemporaryFolder& folder = desktop.folders.root;
  const FilePath a = folder.write("a", ""), b = folder.write("b", ""), c = folder.write("c", "");
};

TEST_F(TrayStoreTest, KeepsEachFileOnceInTheOrderOfItsArrival) {
  TrayStore tray(desktop.defaults);
  int changes = 0;
  const auto subscription = tray.observe([&] { ++changes; });
  tray.add({b, a, b});
  EXPECT_THAT(*tray.items, ElementsAre(b, a));
  tray.add({a, c, b});
  EXPECT_THAT(*tray.items, ElementsAre(b, a, c));
  EXPECT_THAT(stored(), ElementsAre(b, a, c));
  EXPECT_EQ(changes, 2);
  tray.add({a});
  tray.add({});
  EXPECT_EQ(changes, 2);

  tray.remove(a);
  EXPECT_THAT(*tray.items, ElementsAre(b, c));
  EXPECT_THAT(stored(), ElementsAre(b, c));
  tray.clear();
  EXPECT_THAT(*tray.items, IsEmpty());
  EXPECT_THAT(stored(), IsEmpty());
  EXPECT_EQ(changes, 4);
}

TEST_F(TrayStoreTest, ComesBackWithoutTheFilesThatAreGone) {
  TrayStore(desktop.defaults).add({c, a, b});
  std::filesystem::remove(a);
  TrayStore tray(desktop.defaults);
  EXPECT_THAT(*tray.items, ElementsAre(c, b));
  EXPECT_THAT(stored(), ElementsAre(c, a, b)) << "a may come back until something changes";
  tray.remove(b);
  EXPECT_THAT(stored(), ElementsAre(c));
}

TEST_F(TrayStoreTest, StartsEmptyWithoutAList) {
  EXPECT_THAT(*TrayStore(desktop.defaults).items, IsEmpty());
  desktop.defaults.values["trayItems"] = std::string(a);
  EXPECT_THAT(*TrayStore(desktop.defaults).items, IsEmpty()) << "not a list";
  desktop.defaults.values["trayItems"] = Paths{a, a, folder.path(), ""};
  EXPECT_THAT(*TrayStore(desktop.defaults).items, ElementsAre(a, folder.path()));
}

}  // namespace
}  // namespace tarnwick
