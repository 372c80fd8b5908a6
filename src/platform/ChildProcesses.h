#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick {

/// A program that we have started. Nothing here waits for it.
class ChildProcess {
 public:
  /// Ends it if it still runs.
  virtual ~ChildProcess() = default;

  /// Wants to be told, once, when there is output to read, or when the output has ended. Until then, and
  /// while nobody asks, the program waits once it has filled its pipe.
  virtual void awaitOutput() = 0;
  /// Takes some of what it has written, at most 64 KiB; empty: its output has ended.
  virtual std::string read() = 0;
  /// Writes to its standard input, for when it has started. Lost when the program has ended or does not read
  /// what it gets.
  virtual void write(const std::string& bytes) = 0;
};

/// Starts programs.
class ChildProcesses {
 public:
  struct Events {
    std::function<void()> onReadable;
    /// The program has ended, in whatever way.
    std::function<void()> onExit;
    /// It could not be started, with the reason. Nothing else follows.
    std::function<void(const std::string& error)> onFailure;
  };
  virtual ~ChildProcesses() = default;

  /// Starts a program by its absolute path, or by its name in the user's search path, with pipes for input
  /// and output, and with nothing of our environment but what names the user's session. It ends with this
  /// process at the latest. The events come from the main loop, never from within a call, and not after the
  /// child's destruction.
  virtual std::unique_ptr<ChildProcess> launch(
      const std::string& executable, const std::vector<std::string>& arguments, Events events) = 0;
};

}  // namespace tarnwick
