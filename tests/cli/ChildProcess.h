#pragma once
#include <chrono>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"

namespace tarnwick {

/// A program that a test starts: with a file as standard input, with only the given environment, and with its
/// output kept.
class ChildProcess {
 public:
  struct Result {
    /// The exit status, or minus the signal's number.
    int status;
    std::string output, error;
    std::chrono::milliseconds duration;
  };

  /// @param arguments the program's path first; it is looked up in the search path.
  /// @param environment NAME=value.
  ChildProcess(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
      const std::string& input = "");
  /// Kills the program if it still runs.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void signal(int number);
  Result wait();
  const std::string& outputPath() const { return outputPath_; }

  static Result run(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
      const std::string& input = "") {
    return ChildProcess(arguments, environment, input).wait();
  }

 private:
  TemporaryFolder folder_;
  std::string outputPath_ = folder_.path() + "/output";
  std::string errorPath_ = folder_.path() + "/error";
  std::chrono::steady_clock::time_point start_;
  int process_ = -1;
};

}  // namespace tarnwick
