#include "ui/engine/Focus.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "ui/engine/HitTest.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

/// The view around a control whose arrow keys lead there.
Node* groupOf(const Node& node) {
  for (Node* n = node.parent; n; n = n->parent) {
    if (n->attributes.interaction && n->attributes.interaction->arrows) return n;
  }
  return nullptr;
}

bool isChosen(const Node& node) { return node.attributes.interaction->checked.value_or(false); }

/// Which of the controls around `from` a key leads to: -1 and 1 for its neighbours, -2 and 2 for the ends.
std::optional<int> stepOf(Key key, Axis axis) {
  const bool horizontal = axis == Axis::horizontal;
  if (key == (horizontal ? Key::left : Key::up)) return -1;
  if (key == (horizontal ? Key::right : Key::down)) return 1;
  if (key == Key::home) return -2;
  if (key == Key::end) return 2;
  return std::nullopt;
}

}  // namespace

Node* Focus::node() const {
  Node* node = node_;
  const bool takes = node && node->attributes.interaction && node->attributes.interaction->takesFocus();
  return takes && hitTest::takesInput(*node) ? node : nullptr;
}

void Focus::moveTo(Node* node, bool shown) {
  const WeakNode next = node;
  const bool another = node_ != next;
  showRing(false);
  if (another) tell(false);
  node_ = next;
  group_ = next ? groupOf(*next) : nullptr;
  if (group_) {
    const auto all = members(group_);
    place_ = size_t(std::ranges::find(all, next.get()) - all.begin());
  }
  shown_ = shown;
  showRing(true);
  // Also what has it already, which may have lost it to the window.
  tell(true);
  if (next && shown) reveal(*next);
}

void Focus::tell(bool focused) {
  const auto interaction = node_ ? node_->attributes.interaction : nullptr;
  if (interaction && interaction->onFocus) interaction->onFocus(focused);
}

void Focus::setActive(bool active) {
  if (active == active_) return;
  if (active) {
    active_ = true;
    showRing(true);
  } else {
    showRing(false);
    active_ = false;
  }
}

void Focus::showRing(bool shown) {
  Node* node = node_;
  const bool ring = shown && shown_ && active_;
  if (!node || node->hasFocusRing == ring) return;
  if (ring && node->attributes.interaction && node->attributes.interaction->onFocus) return;
  node->hasFocusRing = ring;
  node->needsDraw = true;
  scene_.requestFrame();
}

void Focus::forgetVanished() {
  if (node()) return;
  Node* group = std::exchange(group_, nullptr);
  const auto others = group && hitTest::takesInput(*group) ? members(group) : std::vector<Node*>();
  if (!others.empty()) {
    moveTo(others[std::min(place_, others.size() - 1)], shown_);
  } else if (node_) {
    moveTo(nullptr, false);
  }
}

std::vector<Node*> Focus::members(const Node* group) const {
  std::vector<Node*> members = controls();
  std::erase_if(members, [&](const Node* control) { return groupOf(*control) != group; });
  return members;
}

/// In the order of drawing.
std::vector<Node*> Focus::controls() const {
  std::vector<Node*> controls;
  const std::function<void(Node&)> collect = [&](Node& node) {
    const auto& interaction = node.attributes.interaction;
    if (node.opacity <= 0 || (interaction && interaction->disabled)) return;
    if (interaction && interaction->takesFocus()) controls.push_back(&node);
    for (const auto& child : node.children) collect(*child);
  };
  collect(scope());
  return controls;
}

Node& Focus::scope() const {
  Node* found = &scene_.root();
  const std::function<void(Node&)> search = [&](Node& node) {
    if (node.attributes.interaction && node.attributes.interaction->modal) found = &node;
    for (const auto& child : node.children) search(*child);
  };
  search(scene_.root());
  return *found;
}

bool Focus::step(bool forward) {
  std::vector<Node*> stops;
  const Node* current = node();
  for (Node* control : controls()) {
    const Node* group = groupOf(*control);
    const auto same =
        std::ranges::find_if(stops, [&](Node* stop) { return group && groupOf(*stop) == group; });
    if (same == stops.end())
      stops.push_back(control);
    else if (control == current || (isChosen(*control) && *same != current))
      *same = control;
  }
  if (stops.empty()) return false;
  const auto at = std::ranges::find(stops, current);
  const auto count = std::ptrdiff_t(stops.size());
  const std::ptrdiff_t place = at == stops.end() ? (forward ? -1 : count) : at - stops.begin();
  moveTo(stops[size_t((place + (forward ? 1 : -1) + count) % count)], true);
  return true;
}

bool Focus::move(const KeyEvent& event) {
  const Node* current = node();
  const Node* group = current ? groupOf(*current) : &scope();
  const auto interaction = group ? group->attributes.interaction : nullptr;
  const auto step =
      interaction && interaction->arrows ? stepOf(event.key, *interaction->arrows) : std::nullopt;
  if (!step) return false;
  const std::vector<Node*> all = members(group);
  if (all.empty()) return false;
  const auto last = std::ptrdiff_t(all.size()) - 1;
  const std::ptrdiff_t here =
      current     ? std::ranges::find(all, current) - all.begin()
      : *step > 0 ? -1
                  : last + 1;
  const std::ptrdiff_t there =
      *step == -2  ? 0
      : *step == 2 ? last
                   : std::clamp<std::ptrdiff_t>(here + *step, 0, last);
  moveTo(all[size_t(there)], true);
  return true;
}

void Focus::reveal(Node& node) {
  Rect rect{0, 0, node.frame.width, node.frame.height};
  for (Node *inner = &node, *outer = node.parent; outer; inner = outer, outer = outer->parent) {
    const Point scrolled = outer->element->scrolled(*outer);
    rect = rect.movedBy(inner->frame.origin() - scrolled);
    if (!outer->element->clips()) continue;
    const auto way = [](double from, double to, double window) {
      return from < 0 ? -from : to > window ? std::max(window - to, -from) : 0;
    };
    const Point delta{
        way(rect.x, rect.right(), outer->frame.width), way(rect.y, rect.bottom(), outer->frame.height)};
    if (delta == Point{} || !outer->element->canScroll(*outer, delta)) continue;
    outer->element->scroll(*outer, delta);
    rect = rect.movedBy(scrolled - outer->element->scrolled(*outer));
    scene_.scrolled();
  }
}

}  // namespace tarnwick::ui
