#pragma once
#include <string>

namespace tarnwick {

/// Where a session's programs complain.
class SystemLog {
 public:
  virtual ~SystemLog() = default;
  /// Takes one line without its line feed.
  virtual void write(const std::string& line) = 0;
};

}  // namespace tarnwick
