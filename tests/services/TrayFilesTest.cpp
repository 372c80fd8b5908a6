#include "services/TrayFiles.h"

#include <gmock/gmock.h>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TrayFilesTest : public testing::Test {
 protected:
  /// What can be seen of a file.
  std::string seen(const FilePath& file) {
    const FileLook& look = files.look(file);
    const std::string icon = look.icon ? std::to_string(look.icon->pixels->front() & 0xffffff) : "none";
    return look.isGone ? icon + ", gone" : icon;
  }
  void pass(double seconds) { desktop.scheduler.advance(seconds); }

  MemoryDesktop desktop;
  std::map<FilePath, uint64_t>& versions = desktop.fileIcons.versions;
  TrayFiles files{desktop.scheduler, desktop.fileIcons, desktop.fileManager, desktop.sharing};
};

TEST_F(TrayFilesTest, FollowsTheFilesWhileTheyAreOnShow) {
  versions = {{"/a/1", 7}, {"/a/2", 8}};
  EXPECT_EQ(seen("/a/1"), "none") << "nothing waits";
  EXPECT_EQ(seen("/b/3"), "none");
  pass(0);
  EXPECT_EQ(seen("/a/1"), "7");
  EXPECT_EQ(seen("/b/3"), "none, gone");
  EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt);

  files.setOnShow(true);
  versions = {{"/a/1", 9}, {"/b/3", 3}};
  pass(3);
  EXPECT_EQ(seen("/a/1"), "9");
  EXPECT_EQ(seen("/b/3"), "3") << "it has come back";
  versions.clear();
  pass(3);
  EXPECT_EQ(seen("/a/1"), "9, gone");

  files.keep({"/b/3"});
  desktop.fileIcons.asked.clear();
  pass(2);
  EXPECT_THAT(desktop.fileIcons.asked, ElementsAre("/b/3"));
  files.setOnShow(false);
  EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt);
}

TEST_F(TrayFilesTest, AFolderThatHangsCostsOneLookAndHoldsUpNoOther) {
  for (const char* file : {"/net/1", "/net/2"}) files.look(file);
  desktop.scheduler.backgroundSeconds = 1000;
  files.setOnShow(true);
  desktop.scheduler.backgroundSeconds = 0;
  versions["/here/3"] = 3;
  files.look("/here/3");
  pass(30);
  EXPECT_EQ(seen("/here/3"), "3");
  EXPECT_EQ(seen("/net/1"), "none") << "not known to be gone";
  EXPECT_EQ(std::ranges::count(desktop.fileIcons.asked, "/net/1"), 0) << "nobody else waits there";
  pass(1000);
  EXPECT_EQ(seen("/net/1"), "none, gone");
}

TEST_F(TrayFilesTest, HandsOnWhatIsThere) {
  versions = {{"/1", 1}};
  for (const char* file : {"/1", "/gone"}) files.look(file);
  pass(0);
  for (const char* file : {"/1", "/gone"}) {
    files.open(file);
    files.reveal(file);
  }
  EXPECT_THAT(desktop.fileManager.opened, ElementsAre("/1"));
  EXPECT_THAT(desktop.fileManager.revealed, ElementsAre("/1"));
  files.send({"/gone", "/1"}, "phone");
  files.send({"/gone"}, "phone");
  EXPECT_THAT(desktop.sharing.sent, ElementsAre(testing::Pair("phone", ElementsAre("/1"))));
}

}  // namespace
}  // namespace tarnwick
