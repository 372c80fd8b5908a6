#pragma once
#include <string>
#include <vector>

namespace tarnwick {

/// Brings windows of other programs to the front.
class WindowActivation {
 public:
  virtual ~WindowActivation() = default;
  /// Brings forward the program's newest window that goes by one of the names (of a window's class or instance,
  /// whatever their case), with the keyboard. @return false when it has none that this desktop lets us see
  virtual bool bringForward(const std::vector<std::string>& names) = 0;
};

}  // namespace tarnwick
