#pragma once
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

/// What the measuring programs share: starting processes, and the clock.
namespace bench {

using Clock = std::chrono::steady_clock;

inline double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

[[noreturn]] inline void fail(const char* what, int error = errno) {
  std::fprintf(stderr, "%s: %s\n", what, std::strerror(error));
  std::exit(EXIT_FAILURE);
}

/// Lets hooks take this program for a shell, as which Claude Code runs them: their sessions then belong to
/// whoever has started it, and do not end with it.
inline void passForShell() {
  if (FILE* name = std::fopen("/proc/self/comm", "w")) {
    std::fputs("sh", name);
    std::fclose(name);
  }
}

/// Starts a program that reads the file `input` and writes nowhere. Ends this one when that fails.
inline pid_t start(const std::vector<std::string>& command, const std::string& input) {
  [[maybe_unused]] static const bool passes = (passForShell(), true);
  std::vector<char*> arguments;
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process;
  const int error = posix_spawnp(&process, arguments[0], &files, nullptr, arguments.data(), environ);
  if (error != 0) fail(arguments[0], error);
  posix_spawn_file_actions_destroy(&files);
  return process;
}

/// Waits for the process to end. @return whether it succeeded
inline bool succeeded(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

}  // namespace bench
