#pragma once
#include <array>
#include <limits>
#include <optional>

#include "base/Scheduler.h"
#include "core/HapticFeedback.h"
#include "core/NotchModel.h"
#include "core/NotchPanel.h"
#include "platform/Pointer.h"

namespace tarnwick {

/// Turns the pointer into hover, expansion on dwell, collapse after leaving and file drags, and keeps the
/// panel from taking clicks that are not for the notch.
///
/// It looks sixty times a second, on a fixed grid of time, but sleeps while a further look could change
/// nothing: the outcome is that of a tracker that always looks. Asleep with the pointer inside counts as
/// having looked and found it inside.
class PointerTracker {
 public:
  /// All arguments must outlive the tracker.
  PointerTracker(Scheduler& scheduler, NotchModel& model, NotchPanel& panel, const HapticFeedback& haptics);

  /// Looks for the first time, now. Until then the panel ignores the pointer.
  void start();
  /// The body was opened while the pointer is elsewhere: it has that many seconds to come.
  void awaitPointer(double seconds);
  /// Keeps the open body so, wherever the pointer is, until a button is pressed elsewhere or it is let go of.
  void holdOpen(bool held);
  /// Call it after a change of what the tracker depends on and cannot observe: the panel's place and the
  /// model's `showcase`.
  void wake();

 private:
  struct PointerState {
    std::optional<Point> position;
    bool buttonDown = false;
    int dragChangeCount = 0;
    bool offersFiles = false;
    friend bool operator==(const PointerState&, const PointerState&) = default;
  };
  struct NotchState {
    Size size;
    std::optional<Rect> floating;
    bool isExpanded = false, isHovering = false, isDraggingFiles = false, isDropTargeted = false;
    bool isSeen = false, showcase = false, expandOnHover = false, comesAtEdge = false;
    friend bool operator==(const NotchState&, const NotchState&) = default;
  };

  PointerState pointerState() const;
  NotchState notchState() const;

  void trackMouse();
  bool followFileDrag(const PointerState& pointer, const Rect& surface, double now);
  bool callsFromEdge(const PointerState& pointer, const Rect& surface, double now);
  std::optional<Rect> takenArea(bool draggingFiles) const;
  void pointerIsInside(const PointerState& pointer, double now);
  void pointerIsOutside(double now);
  void setPointerArea(const std::optional<Rect>& area);
  bool holdsGesture(const PointerState& pointer, bool overSurface) const;

  bool timeCouldChangeSomething() const;
  void tickAt(double index);
  void sleep();
  void reconsider();

  Scheduler& scheduler_;
  NotchModel& model_;
  NotchPanel& panel_;
  Pointer& pointer_;
  const HapticFeedback& haptics_;

  // Times are uptimes in seconds.
  double lastInside_ = -std::numeric_limits<double>::infinity();
  std::optional<double> enteredAt_;
  /// Since when the pointer rests against the edge where a notch that cannot be seen is.
  std::optional<double> atEdgeSince_;
  int dragChangeCount_ = 0;
  /// A button was held at some time during the drag over the notch.
  bool dragHasButton_ = false;
  /// The tick that found the drag over the notch let go of, elsewhere or in a drop that has not arrived yet.
  std::optional<double> letGoAt_;
  std::optional<Rect> area_;

  bool asleep_ = false;
  bool inside_ = false;
  /// A button is held that went down in the open body, and drags something there: until it is released, that
  /// counts as inside wherever the pointer is.
  bool holding_ = false;
  /// See `holdOpen`.
  bool heldOpen_ = false;
  /// As the last tick found them.
  PointerState pointerSeen_;
  NotchState notchSeen_;

  Task tick_;
  std::array<Subscription, 5> subscriptions_;
};

}  // namespace tarnwick
