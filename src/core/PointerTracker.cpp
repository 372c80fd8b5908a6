#include "core/PointerTracker.h"

#include <algorithm>
#include <cmath>

namespace tarnwick {
namespace {

constexpr double ticksPerSecond = 60;
/// Far less than a tick: times this close are the same.
constexpr double rounding = 1e-6;

// In seconds.
constexpr double hoverLinger = 0.04;
constexpr double bodyLinger = 0.12;
/// Eighteen ticks, whatever rounding says.
constexpr double dwell = 0.3 - rounding;
/// A drop still arrives after the button's release; only then is a drag over that ended elsewhere.
constexpr double dropGrace = 0.4 - rounding;

/// The current surface. It reaches above the edge of the screen, where a pointer that is pushed against the
/// edge ends up.
Rect surfaceRect(Size panel, Size surface) {
  return {(panel.width - surface.width) / 2, -2, surface.width, surface.height + 2};
}
Rect hoverArea(const Rect& surface) { return surface.grownBy(3, 3); }
/// Where a pointer that is pushed against the edge of the screen ends up: its first row.
Rect edgeArea(const Rect& surface) { return {surface.x, -2, surface.width, 3}; }
/// The way to it from the surface counts as well.
Rect floatingArea(const Rect& floating) { return floating.grownBy(4, 8); }
Rect dragCatchArea(const Rect& surface) { return surface.grownBy(140, 110); }
Rect dragKeepArea(const Rect& surface) { return surface.grownBy(220, 180); }

bool contains(const Rect& area, const std::optional<Point>& position) {
  return position && area.contains(*position);
}

}  // namespace

PointerTracker::PointerTracker(
    Scheduler& scheduler, NotchModel& model, NotchPanel& panel, const HapticFeedback& haptics)
    : scheduler_(scheduler), model_(model), panel_(panel), pointer_(panel.pointer()), haptics_(haptics) {
  const auto notice = [this] { reconsider(); };
  // The surface's size follows from all of these.
  subscriptions_ = {model_.observe(notice), model_.settings.observe(notice), model_.claude.observe(notice),
      model_.media.observe(notice), pointer_.observe([this] { wake(); })};
  panel_.setPointerArea(area_);
  pointer_.setWantsActivity(false);
}

void PointerTracker::start() {
  dragChangeCount_ = pointer_.dragChangeCount();
  // A pointer that is at the edge already has rested there.
  atEdgeSince_ = -std::numeric_limits<double>::infinity();
  trackMouse();
}

void PointerTracker::awaitPointer(double seconds) {
  wake();
  lastInside_ = scheduler_.uptime() + seconds;
}

void PointerTracker::holdOpen(bool held) {
  if (held == heldOpen_) return;
  wake();
  heldOpen_ = held;
  lastInside_ = std::min(lastInside_, scheduler_.uptime());
}

PointerTracker::PointerState PointerTracker::pointerState() const {
  PointerState state{.position = pointer_.position(),
      .buttonDown = pointer_.buttonDown(),
      .dragChangeCount = pointer_.dragChangeCount()};
  if (state.buttonDown) {
    // A drag whose types are not known yet may be one of text, for which the notch must never open.
    const auto types = pointer_.dragTypes();
    state.offersFiles = types && std::find(types->begin(), types->end(), fileListType) != types->end();
  }
  return state;
}

PointerTracker::NotchState PointerTracker::notchState() const {
  return {model_.size(), model_.floating, model_.isExpanded, model_.isHovering, model_.isDraggingFiles,
      model_.isDropTargeted, model_.isSeen(), model_.showcase, model_.settings.expandOnHover,
      model_.settings.comesAtEdge};
}

void PointerTracker::trackMouse() {
  const NotchState notch = notchState();
  if (notch.showcase) {
    inside_ = holding_ = false;
    setPointerArea(std::nullopt);
    sleep();
    return;
  }
  const PointerState pointer = pointerState();
  const bool moved = pointer.position != pointerSeen_.position;

  const double now = scheduler_.uptime();
  const Rect surface = surfaceRect(panel_.size(), notch.size);
  const bool called = callsFromEdge(pointer, surface, now);
  const bool overSurface =
      (notch.isSeen ? contains(hoverArea(surface), pointer.position) : called) ||
      (notch.floating && contains(floatingArea(*notch.floating), pointer.position));
  holding_ = holdsGesture(pointer, overSurface);
  inside_ = overSurface || holding_;
  heldOpen_ = heldOpen_ && notch.isExpanded && (overSurface || !pointer.buttonDown);
  pointerSeen_ = pointer;
  const bool draggingFiles = followFileDrag(pointer, surface, now);
  if (inside_) {
    pointerIsInside(pointer, now);
  } else {
    pointerIsOutside(now);
  }

  setPointerArea(takenArea(draggingFiles));

  // A pointer on its way is somewhere else at the next tick: looking costs less than being told of each step.
  if (moved || notchState() != notch || timeCouldChangeSomething()) {
    tickAt(std::round(now * ticksPerSecond) + 1);
  } else {
    sleep();
  }
}

/// @return whether the pointer has rested against the edge for long enough to bring a notch that cannot be
/// seen
bool PointerTracker::callsFromEdge(const PointerState& pointer, const Rect& surface, double now) {
  const bool rests =
      !model_.isSeen() && model_.settings.comesAtEdge && !pointer.buttonDown &&
      contains(edgeArea(surface), pointer.position);
  if (!rests) {
    atEdgeSince_.reset();
  } else if (!atEdgeSince_) {
    atEdgeSince_ = now;
  }
  return atEdgeSince_ && now - *atEdgeSince_ > dwell;
}

/// A notch that cannot be seen takes no click, and no more of the pointer than it needs to feel it.
std::optional<Rect> PointerTracker::takenArea(bool draggingFiles) const {
  const Rect surface = surfaceRect(panel_.size(), model_.size());
  if (model_.isDraggingFiles) return dragKeepArea(surface);
  if (draggingFiles) return dragCatchArea(surface);
  if (model_.isSeen()) return hoverArea(surface);
  if (pointer_.isKnownEverywhere() || !model_.settings.comesAtEdge) return std::nullopt;
  return edgeArea(surface);
}

bool PointerTracker::holdsGesture(const PointerState& pointer, bool overSurface) const {
  // What leaves the window as a drag between programs is none of the body's gestures any more.
  if (!model_.isExpanded || !pointer.buttonDown || pointer.dragChangeCount != dragChangeCount_) return false;
  // A quick hand presses and leaves within the same tick.
  const bool begins = !pointerSeen_.buttonDown && (overSurface || inside_);
  return holding_ || begins;
}

/// @return whether a drag of files is in progress, wherever it is
bool PointerTracker::followFileDrag(const PointerState& pointer, const Rect& surface, double now) {
  // As of the last look before the button went down: a quick hand starts a drag within the same tick.
  if (!pointer.buttonDown) dragChangeCount_ = pointer.dragChangeCount;
  const bool inProgress =
      pointer.buttonDown && pointer.dragChangeCount != dragChangeCount_ && pointer.offersFiles;
  if (inProgress && !model_.isDraggingFiles && contains(dragCatchArea(surface), pointer.position)) {
    model_.setDraggingFiles(true);
    haptics_.tap();
  }
  if (inProgress && model_.isDraggingFiles && !contains(dragKeepArea(surface), pointer.position)) {
    model_.setDraggingFiles(false);
  }

  // The window also tells of drags whose button nobody sees, such as another window system's. Those are held
  // as long as they are over it.
  dragHasButton_ = model_.isDraggingFiles && (dragHasButton_ || pointer.buttonDown);
  const bool held =
      !model_.isDraggingFiles || inProgress ||
      (model_.isDropTargeted && pointer.buttonDown == dragHasButton_);
  if (held) {
    letGoAt_.reset();
  } else if (!letGoAt_) {
    letGoAt_ = now;
  } else if (now - *letGoAt_ > dropGrace) {
    model_.isDropTargeted = false;
    model_.setDraggingFiles(false);
    letGoAt_.reset();
  }
  return inProgress;
}

void PointerTracker::pointerIsOutside(double now) {
  enteredAt_.reset();
  if (now - lastInside_ > hoverLinger) model_.setHovering(false);
  if (model_.isExpanded && !heldOpen_ && now - lastInside_ > bodyLinger && !model_.isDraggingFiles)
    model_.collapse();
}

void PointerTracker::pointerIsInside(const PointerState& pointer, double now) {
  lastInside_ = now;
  if (!enteredAt_) {
    enteredAt_ = now;
    // A drag was felt when it began, and has brought the surface to the pointer.
    if (!model_.isExpanded && !model_.isDraggingFiles) haptics_.tap();
  }
  model_.setHovering(true);
  if (model_.settings.expandOnHover && !model_.isExpanded && !pointer.buttonDown &&
      now - *enteredAt_ > dwell) {
    model_.expand();
  }
}

void PointerTracker::setPointerArea(const std::optional<Rect>& area) {
  if (area == area_) return;
  area_ = area;
  panel_.setPointerArea(area);
}

bool PointerTracker::timeCouldChangeSomething() const {
  if (letGoAt_ || atEdgeSince_) return true;
  if (inside_) return model_.settings.expandOnHover && !model_.isExpanded && !pointerSeen_.buttonDown;
  return model_.isHovering || (model_.isExpanded && !heldOpen_ && !model_.isDraggingFiles);
}

void PointerTracker::tickAt(double index) {
  tick_ = scheduler_.after(index / ticksPerSecond - scheduler_.uptime(), [this] { trackMouse(); });
}

void PointerTracker::sleep() {
  asleep_ = true;
  notchSeen_ = notchState();
  pointer_.setWantsActivity(!model_.showcase);
  // Nobody reported what happened between this tick's look and the line above.
  if (!model_.showcase && pointerState() != pointerSeen_) wake();
}

void PointerTracker::wake() {
  if (!asleep_) return;
  asleep_ = false;
  pointer_.setWantsActivity(false);
  const double nextTick = std::ceil(scheduler_.uptime() * ticksPerSecond - rounding);
  if (inside_) lastInside_ = std::max(lastInside_, (nextTick - 1) / ticksPerSecond);
  tickAt(nextTick);
}

void PointerTracker::reconsider() {
  if (asleep_ && notchState() != notchSeen_) wake();
}

}  // namespace tarnwick
