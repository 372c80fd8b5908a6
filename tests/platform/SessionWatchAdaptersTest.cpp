#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "TestDesktop.h"
#include "linux/files/InotifyFiles.h"
#include "linux/process/ProcProcesses.h"
#include "linux/process/QtScheduler.h"
#include "support/TemporaryFolder.h"

using namespace tarnwick;

namespace {

uint64_t ownSpace() {
  struct stat space;
  return ::stat("/proc/self/ns/pid", &space) == 0 ? space.st_ino : 0;
}

/// A shell that has started another program.
struct Parent {
  const pid_t number = ::fork();
  Parent() {
    if (number != 0) return;
    ::execl("/bin/sh", "sh", "-c", "sleep 'one' 1000 2>/dev/null || sleep 1001\nexit", nullptr);
    ::_exit(1);
  }
  void end() {
    ::kill(number, SIGKILL);
    ::waitpid(number, nullptr, 0);
  }
};

}  // namespace

TEST(ProcProcesses, KnowsChildrenAndTheEndOfWhatBelongsToTheUserHere) {
  ProcProcesses processes;
  Parent parent;
  const ForeignProcess known{parent.number, ownSpace()}, elsewhere{parent.number, ownSpace() + 1};
  std::vector<ForeignProcesses::Child> children;
  EXPECT_TRUE(waitUntil([&] {
    children = processes.children(known);
    return children.size() == 1 && children[0].arguments == "sleep 1001 ";
  }));
  EXPECT_TRUE(processes.children(elsewhere).empty());

  EXPECT_EQ(processes.ancestors({children.at(0).number, ownSpace()}).at(1), parent.number);
  EXPECT_EQ(processes.ancestors(known).at(1), ::getpid());
  EXPECT_TRUE(processes.ancestors(elsewhere).empty());
  EXPECT_EQ(processes.variable(known, "PATH"), ::getenv("PATH"));
  EXPECT_EQ(processes.variable(known, "PAT") + processes.variable(elsewhere, "PATH"), "");

  int ended = 0, wrong = 0;
  Subscription end;
  // Whoever is told may let go at once.
  end = processes.watch(known, [&] {
    ++ended;
    end = {};
  });
  const Subscription other = processes.watch(elsewhere, [&] { ++wrong; });
  const Subscription nobody = processes.watch({0, ownSpace()}, [&] { ++wrong; });
  parent.end();
  ::kill(children.at(0).number, SIGKILL);
  EXPECT_TRUE(waitUntil([&] { return ended == 1; }));
  EXPECT_EQ(wrong, 0);
}

TEST(InotifyFiles, HandsOverWholeLinesThatAreAppendedToTheUsersOwnFiles) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/log", pipe = folder.path() + "/pipe";
  std::ofstream file(path);
  file << "before\n" << std::flush;
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);

  QtScheduler scheduler;
  InotifyFiles files(scheduler);
  std::vector<std::string> lines;
  const auto note = [&](const std::string& line) { lines.push_back(line); };
  auto subscription = files.follow(path, note);
  const auto waits = files.follow(pipe, note), device = files.follow("/dev/zero", note);
  std::vector<std::string> later;
  const auto missing =
      files.follow(folder.path() + "/later", [&](const std::string& line) { later.push_back(line); });
  // Until it is followed nothing is heard: the first line that comes ends that wait.
  EXPECT_TRUE(waitUntil([&] {
    file << "begin\n" << std::flush;
    return !lines.empty();
  }));
  file << "a\nb" << std::flush;
  EXPECT_TRUE(waitUntil([&] { return lines.back() == "a"; }));
  EXPECT_EQ(lines.front(), "begin") << "only what is appended";
  // Of a flood the end is read.
  file << "c\n" << std::string(1 << 20, 'x') << "\nend\n" << std::flush;
  EXPECT_TRUE(waitUntil([&] { return lines.back() == "end"; }));
  file << "cut " << std::flush;
  std::filesystem::resize_file(path, 0);
  EXPECT_TRUE(waitUntil([&] {
    std::ofstream(path, std::ios::app) << "new\n";
    return lines.back() == "new";
  }));
  subscription = {};
  file << "unheard\n" << std::flush;
  std::ofstream(path, std::ios::app) << "unheard\n";
  subscription = files.follow(path, note);
  EXPECT_TRUE(waitUntil([&] {
    std::ofstream(path, std::ios::app) << "again\n";
    return lines.back() == "again";
  }));
  EXPECT_EQ(std::ranges::count(lines, "unheard"), 0);
  std::ofstream(folder.path() + "/later") << "first\n";
  EXPECT_TRUE(waitUntil([&] { return later == std::vector<std::string>{"first"}; }));
}

TEST(InotifyFiles, HandsOverFilesThatAreWrittenAnew) {
  const TemporaryFolder folder;
  const std::string path = folder.write("status", "first");
  QtScheduler scheduler;
  InotifyFiles files(scheduler);
  std::string told;
  auto subscription = files.followWhole(path, [&](const std::string& text) { told = text; });
  EXPECT_TRUE(waitUntil([&] { return told == "first"; }));
  // In place, and twice by another file of that name.
  folder.write("status", "second");
  EXPECT_TRUE(waitUntil([&] { return told == "second"; }));
  for (const char* text : {"third", "fourth"}) {
    std::filesystem::rename(folder.write("next", text), path);
    EXPECT_TRUE(waitUntil([&] { return told == text; })) << text;
  }
  folder.write("status", std::string(1 << 20, 'x'));
  EXPECT_TRUE(waitUntil([&] { return told == std::string(64 << 10, 'x'); }));
  subscription = {};
  folder.write("status", "unheard");
  const auto again = files.followWhole(path, [&](const std::string& text) { told = text; });
  EXPECT_TRUE(waitUntil([&] { return told == "unheard"; }));
}
