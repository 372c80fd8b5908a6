#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/Geometry.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// One window of a program, in global points.
struct WindowInfo {
  /// The process that it belongs to; absent when it is not known.
  std::optional<int64_t> owner;
  /// Without the frame that a window manager puts around it.
  Rect bounds;
  /// It takes all the room that the desktop gives to ordinary windows, and does not ask for more.
  bool maximized = false;
};

/// The windows of programs that the user sees now: without minimised ones, those of other workspaces, panels
/// and the desktop.
class WindowList {
 public:
  virtual ~WindowList() = default;
  /// Front to back or in any order; none when it cannot be had.
  virtual std::optional<std::vector<WindowInfo>> onScreen() = 0;
  /// The process that asks.
  virtual int64_t ownProcess() const = 0;
  /// Calls `onChange` on the main thread when the list may have become another one; within half a second of
  /// that, but not more often than a few times a second.
  virtual Subscription observe(std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
