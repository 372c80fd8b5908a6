#pragma once
#include <functional>
#include <string>

namespace tarnwick {

/// Reads commands, one a line, from standard input. Ends the process at the end of the input: nobody is left
/// to work for.
class CommandReader {
 public:
  explicit CommandReader(std::function<void(const std::string& command)> onCommand);

 private:
  void read();

  const std::function<void(const std::string& command)> onCommand_;
  std::string tail_;
};

}  // namespace tarnwick
