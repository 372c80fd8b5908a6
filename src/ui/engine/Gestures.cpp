#include "ui/engine/Gestures.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/engine/HitTest.h"
#include "ui/engine/Host.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

/// Seconds within which, and points around which, a second press counts as one of a double click.
constexpr double doubleClickTime = 0.4, doubleClickReach = 5;
/// Points that a drag takes at least where a tap on something in front of it is possible, too.
constexpr double deliberateWay = 4;

double distance(Point a, Point b) { return std::hypot(a.x - b.x, a.y - b.y); }

bool takesPointer(const Node& node) {
  const auto& i = node.attributes.interaction;
  return i && (i->onPointer || i->onTap || i->onDoubleTap || i->onPress || i->menu || i->contextMenu ||
                  i->files || !i->drags.empty());
}

bool takesTaps(const Interaction& i) { return i.onTap || i.onDoubleTap || i.menu; }
bool takesTap(const Node& node) {
  const auto& i = node.attributes.interaction;
  return i && (i->onTap || i->onDoubleTap);
}
bool showsPresses(const Interaction& i) { return bool(i.onPress); }

}  // namespace

Node* Gestures::Part::node() const {
  Node* node = node_;
  return node && node->attributes.interaction && hitTest::takesInput(*node) ? node : nullptr;
}

std::shared_ptr<const Interaction> Gestures::Part::interaction() const {
  if (const Node* alive = node()) interaction_ = alive->attributes.interaction;
  return interaction_;
}

void Gestures::press(Point point, PointerButton button, Modifiers modifiers) {
  if (button_) return;
  const double now = scene_.uptime();
  const bool again =
      button == lastButton_ && now - lastTime_ < doubleClickTime &&
      distance(point, lastPoint_) <= doubleClickReach;
  clicks_ = again ? clicks_ + 1 : 1;
  lastButton_ = button;
  lastTime_ = now;
  lastPoint_ = start_ = point;
  button_ = button;
  modifiers_ = modifiers;
  std::vector<Node*> under = hitTest::at(scene_.root(), point, takesPointer);
  if (Node* const coming = comingTo(point, under)) under = {coming};
  if (again) std::erase_if(under, [this](const Node* node) { return belongsToLastTap(*node); });
  assign(under);
  if (button_ && press_) showPress(true);
  if (button_) startDrags(point);
  if (button_ && menu_) openMenu();
}

void Gestures::assign(const std::vector<Node*>& under) {
  // A handler may end the others.
  const std::vector<WeakNode> front(under.begin(), under.end());
  for (Node* node : front) {
    if (!node || !button_) continue;
    Part part(*node);
    const auto interaction = part.interaction();
    const bool taken = tap_ || press_ || drag_ || files_ || menu_;
    if (!taken && interaction->onPointer && send(part, PointerEvent::Phase::press, start_, modifiers_)) {
      pointer_ = part;
      return;
    }
    if (*button_ == PointerButton::secondary && !menu_ && interaction->contextMenu) menu_ = part;
    if (*button_ != PointerButton::primary) continue;
    if (!menu_ && !tap_ && interaction->menu) menu_ = part;
    if (!files_ && interaction->files) files_ = part;
    if (!press_ && !tap_ && interaction->onPress) press_ = part;
    if (!drag_ && !interaction->drags.empty()) {
      drag_ = part;
      leastDrag_ = tap_ ? deliberateWay : 0;
      dragging_.assign(interaction->drags.size(), false);
    }
    if (!tap_ && takesTaps(*interaction)) tap_ = part;
  }
}

void Gestures::move(Point point, Modifiers modifiers) {
  if (!button_) return;
  modifiers_ = modifiers;
  cancelVanished();
  if (pointer_) send(pointer_, PointerEvent::Phase::move, point, modifiers);
  if (dragFiles(point)) return;
  startDrags(point);
  if (press_) showPress(isOver(press_, point, showsPresses));
}

void Gestures::release(Point point, PointerButton button, Modifiers modifiers) {
  if (button_ != button) return;
  cancelVanished();
  if (pointer_) send(pointer_, PointerEvent::Phase::release, point, modifiers);
  showPress(false);
  const bool dragged = std::ranges::find(dragging_, true) != dragging_.end();
  const bool taps = tap_ && !dragged && isOver(tap_, point, takesTaps);
  if (dragged) tellDrags(&DragGesture::ended, point);
  // What the tap does may begin anew.
  const Part tapped = std::exchange(tap_, {});
  const bool chooses = menu_ && distance(point, start_) >= deliberateWay;
  pointer_ = press_ = drag_ = files_ = menu_ = {};
  dragging_.clear();
  button_.reset();
  if (chooses) scene_.input().menus().choose(point);
  if (!taps || !tapped.node()) return;
  const auto interaction = tapped.interaction();
  const unsigned long serial = tapped.node()->serial;
  if (interaction->onDoubleTap && clicks_ % 2 == 0 && lastTapped_ == serial) {
    interaction->onDoubleTap();
    return;
  }
  lastTapped_ = serial;
  if (interaction->onTap) interaction->onTap();
}

void Gestures::cancel() {
  if (!button_) return;
  cancelPointer();
  showPress(false);
  cancelDrags();
  tap_ = press_ = files_ = menu_ = {};
  button_.reset();
}

void Gestures::cancelVanished() {
  if (!button_) return;
  if (pointer_.hasVanished()) cancelPointer();
  if (press_.hasVanished()) {
    showPress(false);
    press_ = {};
  }
  if (drag_.hasVanished()) cancelDrags();
  if (tap_.hasVanished()) tap_ = {};
  if (files_.hasVanished()) files_ = {};
}

void Gestures::openMenu() {
  Node* const node = menu_.node();
  if (!node) return;
  const auto interaction = menu_.interaction();
  const bool atPointer = button_ == PointerButton::secondary;
  const Rect anchor = atPointer ? Rect{start_.x, start_.y, 0, 0} : node->presentedInScene();
  scene_.input().menus().open(
      atPointer ? interaction->contextMenu() : interaction->menu(), anchor, *node, false);
}

/// @return whether the window has taken the gesture over
bool Gestures::dragFiles(Point point) {
  const auto interaction = files_.interaction();
  Host* const host = scene_.host();
  if (!interaction || !host || distance(point, start_) < deliberateWay) return false;
  const std::vector<FilePath> files = interaction->files();
  const WeakNode source = files_.node();
  cancel();
  if (source && !files.empty()) host->dragFiles(files, *source);
  return true;
}

void Gestures::cancelPointer() {
  const Part part = std::exchange(pointer_, {});
  if (part) send(part, PointerEvent::Phase::cancel, start_, modifiers_);
}

void Gestures::cancelDrags() {
  const auto interaction = std::exchange(drag_, {}).interaction();
  const std::vector<bool> dragging = std::exchange(dragging_, {});
  for (size_t i = 0; interaction && i < std::min(dragging.size(), interaction->drags.size()); ++i) {
    if (dragging[i] && interaction->drags[i].cancelled) interaction->drags[i].cancelled();
  }
}

/// @return whether the view has used it
bool Gestures::send(const Part& part, PointerEvent::Phase phase, Point point, Modifiers modifiers) const {
  const Node* node = part.node();
  const auto interaction = part.interaction();
  if (!interaction->onPointer) return false;
  return interaction->onPointer(
      {phase, node ? hitTest::inNode(*node, point) : Point{}, *button_, modifiers, clicks_});
}

void Gestures::showPress(bool pressed) {
  if (pressed == pressShown_) return;
  pressShown_ = pressed;
  const auto interaction = press_.interaction();
  if (interaction && interaction->onPress) interaction->onPress(pressed);
}

/// Begins the drags that are far enough, and tells those that are under way.
void Gestures::startDrags(Point point) {
  if (!drag_) return;
  const auto interaction = drag_.interaction();
  const double way = distance(point, start_);
  for (size_t i = 0; i < std::min(dragging_.size(), interaction->drags.size()); ++i) {
    if (way >= std::max(interaction->drags[i].minimumDistance, leastDrag_)) dragging_[i] = true;
  }
  tellDrags(&DragGesture::changed, point);
}

void Gestures::tellDrags(std::function<void(const DragValue&)> DragGesture::*handler, Point point) {
  const Node* node = drag_.node();
  const auto interaction = drag_.interaction();
  if (!node) return;
  const DragValue value{hitTest::inNode(*node, start_), hitTest::inNode(*node, point), node->presentedSize};
  for (size_t i = 0; i < std::min(dragging_.size(), interaction->drags.size()); ++i) {
    if (dragging_[i] && interaction->drags[i].*handler) (interaction->drags[i].*handler)(value);
  }
}

/// A quick hand clicks where something will be that is still on its way there. Instead of what passes by on a
/// way of its own, which nobody aims at, that gets the tap; null: there is nothing like that.
Node* Gestures::comingTo(Point point, const std::vector<Node*>& under) const {
  Node* const coming = hitTest::atRest(scene_.root(), point, takesPointer);
  const bool counts =
      coming && takesTap(*coming) && (under.empty() || (coming->arrives() && under.front()->arrives()));
  return counts ? coming : nullptr;
}

/// Whether the view is inside of the one that was tapped last. That was in front then, so its tap has brought
/// the view there: the second click of a double click is not for it.
bool Gestures::belongsToLastTap(const Node& node) const {
  const Node* around = node.parent;
  while (around && around->serial != lastTapped_) around = around->parent;
  return around;
}

/// Whether the view is the frontmost at `point` that wants the same.
bool Gestures::isOver(const Part& part, Point point, bool (*wanted)(const Interaction&)) const {
  const Node* node = part.node();
  const auto under = hitTest::at(
      scene_.root(), point,
      [=](const Node& n) { return n.attributes.interaction && wanted(*n.attributes.interaction); }, node);
  return node && (comingTo(point, under) == node || (!under.empty() && under.front() == node));
}

}  // namespace tarnwick::ui
