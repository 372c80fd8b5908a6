#include "base/AtomicFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/TemporaryFolder.h"

using namespace tarnwick;
namespace fs = std::filesystem;

namespace {

size_t fileCount(const std::string& folder) {
  return static_cast<size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(AtomicFile, ReplacesAFileAndLeavesNothingElse) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/file";
  const std::string big(1 << 20, 'x');
  for (const std::string& contents : {std::string("a\0b", 3), big, std::string()}) {
    // A writer that was killed has left this behind.
    ASSERT_FALSE(writeFileAtomically(path + ".new", std::string(100, 'y')));
    fs::rename(path + ".new", path + ".new-tarnwick");
    ASSERT_FALSE(writeFileAtomically(path, contents));
    std::string read = "before";
    ASSERT_FALSE(readFile(path, read));
    EXPECT_EQ(read, contents);
    EXPECT_EQ(fileCount(folder.path()), 1u);
  }
}

TEST(AtomicFile, KeepsPermissionsAndGivesANewFileTheMode) {
  const TemporaryFolder folder;
  const mode_t mask = ::umask(027);
  const std::string path = folder.path() + "/file";
  ASSERT_FALSE(writeFileAtomically(path, "a"));
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
  fs::permissions(path, fs::perms(0604));
  ASSERT_FALSE(writeFileAtomically(path, "b"));
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0604));
  ASSERT_FALSE(writeFileAtomically(path + "2", "a", 0600));
  EXPECT_EQ(fs::status(path + "2").permissions(), fs::perms(0600));
  ::umask(mask);
}

TEST(AtomicFile, WritesThroughLinks) {
  const TemporaryFolder folder;
  const std::string root = folder.path();
  fs::create_directory(root + "/real");
  fs::create_symlink("real", root + "/folder");
  fs::create_symlink("../second", root + "/real/first");
  fs::create_symlink(root + "/real/file", root + "/second");
  // The links lead to a place where there is no file yet, and then to a file.
  for (const char* contents : {"a", "b"}) {
    ASSERT_FALSE(writeFileAtomically(root + "/folder/first", contents));
    EXPECT_EQ(contentsOf(root + "/real/file"), contents);
    EXPECT_TRUE(fs::is_symlink(root + "/real/first"));
    EXPECT_TRUE(fs::is_symlink(root + "/second"));
  }
}

TEST(AtomicFile, MakesABackupOfItsOwn) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/file", backup = folder.path() + "/backup";
  folder.write("file", "a");
  fs::permissions(path, fs::perms(0604));
  fs::create_symlink("elsewhere", backup);
  ASSERT_FALSE(writeBackup(backup, "b", path));
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(backup)));
  EXPECT_EQ(fs::status(backup).permissions(), fs::perms(0604));
  EXPECT_EQ(contentsOf(backup), "b");
  EXPECT_EQ(fileCount(folder.path()), 2u);
}

TEST(AtomicFile, TellsErrorsAndLeavesTheOldFile) {
  const TemporaryFolder folder;
  std::string contents;
  EXPECT_EQ(readFile(folder.path() + "/none", contents), std::errc::no_such_file_or_directory);
  EXPECT_EQ(readFile(folder.path(), contents), std::errc::is_a_directory);
  const std::string pipe = folder.path() + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(readFile(pipe, contents), std::errc::operation_not_supported) << "nobody writes to it";
  EXPECT_EQ(writeFileAtomically(pipe, "a"), std::errc::operation_not_supported);
  EXPECT_TRUE(fs::is_fifo(pipe));
  EXPECT_EQ(writeFileAtomically(folder.path() + "/none/file", "a"), std::errc::no_such_file_or_directory);
  fs::create_directories(folder.path() + "/full/of/things");
  EXPECT_TRUE(writeFileAtomically(folder.path() + "/full", "a"));
  EXPECT_TRUE(fs::exists(folder.path() + "/full/of/things"));
  fs::create_symlink("loop", folder.path() + "/loop");
  EXPECT_TRUE(writeFileAtomically(folder.path() + "/loop", "a"));
  EXPECT_TRUE(fs::is_symlink(folder.path() + "/loop"));
  EXPECT_EQ(fileCount(folder.path()), 3u);
}

}  // namespace
