#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/Geometry.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// One window on the screen, in global points.
struct WindowInfo {
  /// 0 for the ordinary windows of programs; absent when it is not known.
  std::optional<int> layer;
  /// The process that it belongs to; absent when it is not known.
  std::optional<int64_t> owner;
  std::optional<Rect> bounds;
};

/// The windows that the user sees now: without minimised ones, those of other workspaces, and the desktop.
class WindowList {
 public:
  virtual ~WindowList() = default;
  /// Front to back or in any order; none when it cannot be had.
  virtual std::optional<std::vector<WindowInfo>> onScreen() const = 0;
  /// The process that asks.
  virtual int64_t ownProcess() const = 0;
};

}  // namespace tarnwick
