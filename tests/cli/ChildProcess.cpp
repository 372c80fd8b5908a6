#include "ChildProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

namespace tarnwick {
namespace {

std::vector<char*> pointers(const std::vector<std::string>& strings) {
  std::vector<char*> result;
  for (const std::string& string : strings) result.push_back(const_cast<char*>(string.c_str()));
  result.push_back(nullptr);
  return result;
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
    const std::vector<std::string>& environment, const std::string& input) {
  const std::string inputPath = folder_.write("input", input);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, 0, inputPath.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, 1, outputPath_.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&files, 2, errorPath_.c_str(), O_WRONLY | O_CREAT, 0600);
  start_ = std::chrono::steady_clock::now();
  const int error = ::posix_spawnp(&process_, arguments[0].c_str(), &files, nullptr,
      pointers(arguments).data(), pointers(environment).data());
  EXPECT_EQ(error, 0) << arguments[0];
  posix_spawn_file_actions_destroy(&files);
}

ChildProcess::~ChildProcess() {
  if (process_ < 0) return;
  signal(SIGKILL);
  wait();
}

void ChildProcess::signal(int number) { ::kill(process_, number); }

ChildProcess::Result ChildProcess::wait() {
  int status = 0;
  EXPECT_EQ(::waitpid(process_, &status, 0), process_);
  process_ = -1;
  const auto duration =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), contentsOf(outputPath_),
      contentsOf(errorPath_), duration};
}

}  // namespace tarnwick
