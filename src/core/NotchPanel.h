#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "base/FilePath.h"
#include "base/Geometry.h"
#include "platform/Pointer.h"
#include "platform/Screens.h"

namespace tarnwick {

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
  /// What lies below the pointer has a way to go there.
  bool contentCanFollow = false;
};

/// The notch's window: undecorated, transparent, above everything, on every workspace, never activated by a
/// click. It draws the root view and is otherwise a dumb surface that the controller drives.
///
/// Its coordinates are those of the root view: points from its top left corner, y downwards. The window
/// itself may be smaller where the desktop needs it so, but never shows less than the surface.
class NotchPanel {
 public:
  virtual ~NotchPanel() = default;

  /// Puts it in the middle of that screen's top edge.
  virtual void moveTo(const Screen& screen) = 0;
  /// Of the area that the root view is laid out in, in points. The surface is in the middle of its top edge.
  virtual Size size() const = 0;
  /// Shows it above everything without activating it.
  virtual void orderFrontRegardless() = 0;

  /// The pointer, in the panel's coordinates.
  virtual Pointer& pointer() = 0;
  /// The part in which the window takes the pointer and drops, besides what floats beside the surface; clicks
  /// elsewhere reach what lies below. Nothing: it ignores the pointer altogether.
  virtual void setPointerArea(const std::optional<Rect>& area) = 0;

  /// Takes the keyboard: for a text field, and for who has opened the notch by keyboard.
  virtual void becomeKey() = 0;
  /// Gives the keyboard back to the window that had it before, if the panel has it or has asked for it.
  virtual void resignKey() = 0;

  /// The panel has come by the keyboard, or has lost it.
  std::function<void(bool has)> onKeyChange;
  /// Its size has become another one.
  std::function<void()> onResize;
  /// Answers true when it consumed the event; otherwise the content below the pointer scrolls.
  std::function<bool(const ScrollEvent&)> onScroll;
  /// Files are being dragged over the window.
  std::function<void()> onDragEnter;
  std::function<void()> onDragExit;
  /// Also called with an empty list when what was dropped holds no file.
  std::function<void(const std::vector<FilePath>&)> onDropFiles;
};

}  // namespace tarnwick
