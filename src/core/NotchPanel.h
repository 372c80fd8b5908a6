#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "base/FilePath.h"
#include "base/Geometry.h"

namespace tarnwick {

/// The panel's size in points: room for the largest surface with its shadow.
inline constexpr Size panelSize{940, 380};

/// One step of a scroll gesture.
struct ScrollEvent {
  enum class Phase { none, mayBegin, began, changed, ended, cancelled };
  Phase phase = Phase::none;
  /// Inertial scrolling after the fingers have left.
  bool momentum = false;
  /// A trackpad's smooth deltas; false for the clicks of a mouse wheel.
  bool precise = false;
  /// Natural scrolling: the content follows the fingers.
  bool directionInverted = false;
  /// In points; positive moves the content right and down.
  double deltaX = 0, deltaY = 0;
};

/// The notch's window: undecorated, transparent, above everything, on every workspace, never activated by a
/// click. It draws the root view and is otherwise a dumb surface that the controller drives.
class NotchPanel {
 public:
  virtual ~NotchPanel() = default;

  /// The area that the root view is laid out in, in global points. The window itself may be smaller where the
  /// desktop needs it so, but never shows less than the surface.
  virtual void setFrame(const Rect& frame) = 0;
  virtual Rect frame() const = 0;
  /// Shows it above everything without activating it.
  virtual void orderFrontRegardless() = 0;

  /// The part (in global points) in which the window takes the pointer and drops; clicks elsewhere reach what
  /// lies below. Nothing: it ignores the pointer altogether.
  virtual void setPointerArea(const std::optional<Rect>& area) = 0;

  /// True while the window has the keyboard focus.
  virtual bool isKey() const = 0;
  /// Gives the focus back to the window that had it before.
  virtual void resignKey() = 0;

  /// Answers true when it consumed the event; otherwise the content below the pointer scrolls.
  std::function<bool(const ScrollEvent&)> onScroll;
  /// Files are being dragged over the window.
  std::function<void()> onDragEnter;
  std::function<void()> onDragExit;
  /// Also called with an empty list when what was dropped holds no file.
  std::function<void(const std::vector<FilePath>&)> onDropFiles;
};

}  // namespace tarnwick
