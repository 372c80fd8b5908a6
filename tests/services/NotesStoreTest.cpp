#include "services/NotesStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

class NotesStoreTest : public testing::Test {
 protected:
  std::string saved(const std::string& name = "notes.txt") const { return contentsOf(folder + "/" + name); }
  void pass(double seconds) { desktop.scheduler.advance(seconds); }

  MemoryDesktop desktop;
  const std::string folder = desktop.folders.data() + "/Tarnwick";
};

TEST_F(NotesStoreTest, ABurstOfTypingIsWrittenOnceAfterAPause) {
  NotesStore notes(desktop.scheduler, desktop.folders);
  std::string typed;
  for (const char letter : std::string("0123456789")) {
    notes.setText(typed += letter);
    pass(0.1);
    EXPECT_EQ(saved(), "(no file)");
  }
  pass(0.29);
  EXPECT_EQ(saved(), "(no file)");
  pass(0.02);
  EXPECT_EQ(saved(), "0123456789");
  EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt);

  notes.setText("");
  pass(0.41);
  EXPECT_EQ(saved(), "");
}

TEST_F(NotesStoreTest, OnlyADifferenceIsNewsButEverythingIsSaved) {
  NotesStore notes(desktop.scheduler, desktop.folders);
  int changes = 0;
  const auto subscription = notes.observe([&] { ++changes; });
  notes.setText("a");
  notes.setText("a");
  EXPECT_EQ(changes, 1);
  pass(1);
  std::filesystem::remove(folder + "/notes.txt");
  notes.setText("a");
  pass(1);
  EXPECT_EQ(saved(), "a");
}

TEST_F(NotesStoreTest, NothingIsLostAtTheEndAndNothingOldComesBack) {
  {
    NotesStore notes(desktop.scheduler, desktop.folders);
    notes.setText("pending");
    notes.flush();
    EXPECT_EQ(saved(), "pending");
    notes.setText("of a store that goes");
  }
  EXPECT_EQ(saved(), "of a store that goes");

  NotesStore notes(desktop.scheduler, desktop.folders);
  EXPECT_EQ(notes.text(), "of a store that goes");
  notes.flush();
  EXPECT_EQ(saved(), "of a store that goes") << "nothing was typed";
  desktop.scheduler.backgroundSeconds = 5;
  notes.setText("slow");
  pass(0.5);
  notes.setText("newer");
  notes.flush();
  pass(9);
  EXPECT_EQ(saved(), "newer") << "the slow write comes too late";
}

TEST_F(NotesStoreTest, NobodyElseReadsThem) {
  namespace fs = std::filesystem;
  fs::remove_all(desktop.folders.data());
  for (const bool isThere : {false, true}) {
    if (isThere) {
      fs::permissions(folder, fs::perms(0755));
      fs::permissions(folder + "/notes.txt", fs::perms(0644));
    }
    NotesStore notes(desktop.scheduler, desktop.folders);
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms(0700)) << "at once";
    notes.setText("secret");
    pass(1);
    EXPECT_EQ(fs::status(folder + "/notes.txt").permissions(), fs::perms(0600));
  }
}

TEST_F(NotesStoreTest, WhatIsNoTextIsKeptAside) {
  const std::string foreign[] = {"caf\xe9", "cut \xe2\x9c", "\xed\xa0\x80", "\xc0\x80", "\xff\xfeh\0i\0"};
  int number = 0;
  for (const std::string& contents : foreign) {
    desktop.folders.root.write("data/Tarnwick/notes.txt", contents);
    NotesStore notes(desktop.scheduler, desktop.folders);
    EXPECT_EQ(notes.text(), "");
    notes.setText("");
    pass(1);
    EXPECT_EQ(saved(), contents) << "nothing was typed";
    notes.setText("new");
    pass(1);
    notes.setText("");
    pass(1);
    EXPECT_EQ(saved(), "") << "from now on the notes are the user's own";
    ++number;
    EXPECT_EQ(
        saved(number == 1 ? "notes.unreadable.txt" : "notes.unreadable-" + std::to_string(number) + ".txt"),
        contents);
  }
  // A folder, or a pipe that nobody writes to.
  for (const char* aside : {"/notes.unreadable-6.txt", "/notes.unreadable-7.txt"}) {
    std::filesystem::remove(folder + "/notes.txt");
    number == 5 ? ::mkdir((folder + "/notes.txt").c_str(), 0700)
                : ::mkfifo((folder + "/notes.txt").c_str(), 0600);
    ++number;
    NotesStore notes(desktop.scheduler, desktop.folders);
    notes.setText("new");
    pass(1);
    EXPECT_EQ(saved(), "new");
    EXPECT_TRUE(std::filesystem::exists(folder + aside));
  }
}

TEST_F(NotesStoreTest, WhatCannotBeWrittenIsKeptAndTriedAgain) {
  for (const bool withDemonstration : {false, true}) {
    std::filesystem::remove_all(folder);
    desktop.folders.root.write("data/Tarnwick", "in the way");
    NotesStore notes(desktop.scheduler, desktop.folders);
    notes.setText("typed");
    if (withDemonstration) {
      notes.showcaseBegin();
      notes.setText("shown");
    }
    pass(1);
    EXPECT_EQ(contentsOf(folder), "in the way");
    std::filesystem::remove(folder);
    pass(60);
    EXPECT_EQ(saved(), "typed");
    notes.showcaseEnd();
    EXPECT_EQ(notes.text(), "typed");
  }
}

TEST_F(NotesStoreTest, WhatCouldNotBeWrittenIsTriedAgain) {
  // In the way of what is written first.
  const std::string obstacle = folder + "/notes.txt.new-tarnwick";
  struct {
    const char* what;
    std::function<void(NotesStore&)> then;
  } const cases[] = {
      {"with the next pause",
          [&](NotesStore& notes) {
            notes.setText("new");
            pass(0.5);
          }},
      {"at the end", [](NotesStore& notes) { notes.flush(); }}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    NotesStore notes(desktop.scheduler, desktop.folders);
    notes.setText("old");
    pass(1);
    std::filesystem::create_directory(obstacle);
    notes.setText("new");
    pass(1);
    EXPECT_EQ(saved(), "old");
    EXPECT_EQ(notes.text(), "new");
    std::filesystem::remove(obstacle);
    c.then(notes);
    EXPECT_EQ(saved(), "new");
    pass(20);
    EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt);
  }
}

}  // namespace
}  // namespace tarnwick
