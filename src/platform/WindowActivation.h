#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnwick {

/// Brings windows of other programs to the front.
class WindowActivation {
 public:
  virtual ~WindowActivation() = default;
  /// Brings forward the program's newest window that goes by one of the names (of a window's class or
  /// instance, whatever their case), with the keyboard. @return false when it has none that this desktop lets
  /// us see
  virtual bool bringForward(const std::vector<std::string>& names) = 0;
  /// The window that contains `told`, unless it is known to belong to none of the processes; else the topmost
  /// window of the first of them that has any. `told` is the display server's number for it, 0 when nobody
  /// has told. None when this desktop lets us see no such window.
  virtual std::optional<uint32_t> windowOf(uint32_t told, const std::vector<int32_t>& processes) = 0;
  /// Brings that window forward, with the keyboard.
  virtual void bringForward(uint32_t window) = 0;
};

}  // namespace tarnwick
