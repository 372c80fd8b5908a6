#include "ui/engine/KeyboardFocus.h"

#include <algorithm>
#include <cmath>

#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

const Interaction* interactionOf(const Node& node) { return node.attributes.interaction.get(); }

void collect(Node& node, std::vector<Node*>& controls) {
  const Interaction* interaction = interactionOf(node);
  if (node.isLeaving || (interaction && interaction->disabled)) return;
  if (interaction && interaction->isFocusable()) controls.push_back(&node);
  for (const auto& child : node.children) collect(*child, controls);
}

/// What a tree of views does with keys, the frontmost and innermost first.
void collect(const Node& node, std::vector<std::shared_ptr<const Interaction>>& handlers) {
  const auto& interaction = node.attributes.interaction;
  if (node.isLeaving || (interaction && interaction->disabled)) return;
  for (auto child = node.children.rbegin(); child != node.children.rend(); ++child)
    collect(**child, handlers);
  if (interaction && interaction->onKey) handlers.push_back(interaction);
}

}  // namespace

Node* KeyboardFocus::focused() const {
  Node* const node = focused_;
  return node && !node->leaves() && interactionOf(*node) && interactionOf(*node)->isFocusable() ? node
                                                                                                : nullptr;
}

bool KeyboardFocus::offer(const KeyEvent& event) const {
  // Listed first: a handler may change the views.
  std::vector<std::shared_ptr<const Interaction>> handlers;
  const Node* node = focused();
  if (!node) collect(*scene_.root_, handlers);
  for (; node; node = node->parent) {
    const auto& interaction = node->attributes.interaction;
    if (interaction && interaction->onKey) handlers.push_back(interaction);
  }
  return std::ranges::any_of(handlers, [&](const auto& handler) { return handler->onKey(event); });
}

bool KeyboardFocus::key(const KeyEvent& event) {
  if (offer(event)) return true;
  const Modifiers& held = event.modifiers;
  if (held.control || held.alt || held.meta) return false;
  Node* const node = focused();
  switch (event.key) {
    case Key::tab:
      return step(held.shift ? -1 : 1);
    case Key::enter:
    case Key::space: {
      if (!node || !interactionOf(*node)->onTap || event.isRepeat) return false;
      moveTo(node, true);
      const auto interaction = node->attributes.interaction;
      interaction->onTap();
      return true;
    }
    case Key::left:
    case Key::right:
    case Key::up:
    case Key::down:
      return node && move(event.key);
    case Key::text:
    case Key::escape:
    case Key::home:
    case Key::end:
    case Key::pageUp:
    case Key::pageDown:
    case Key::backspace:
    case Key::deleteForward:
      break;
  }
  return false;
}

std::vector<Node*> KeyboardFocus::controls() const {
  std::vector<Node*> controls;
  collect(*scene_.root_, controls);
  return controls;
}

bool KeyboardFocus::step(int direction) {
  const std::vector<Node*> all = controls();
  if (all.empty()) return false;
  const auto count = std::ptrdiff_t(all.size());
  const std::ptrdiff_t now = std::ranges::find(all, focused()) - all.begin();
  std::ptrdiff_t next = direction > 0 ? 0 : count - 1;
  if (now != count) next = (now + direction + count) % count;
  moveTo(all[size_t(next)], true);
  return true;
}

/// To the control in that direction whose middle is nearest, ways aside counted double.
bool KeyboardFocus::move(Key arrow) {
  const bool across = arrow == Key::left || arrow == Key::right;
  const double sign = arrow == Key::left || arrow == Key::up ? -1 : 1;
  const Rect from = Scene::presentedFrame(*focused());
  Node* nearest = nullptr;
  double least = 0;
  for (Node* control : controls()) {
    const Rect to = Scene::presentedFrame(*control);
    const double dx = to.midX() - from.midX(), dy = to.midY() - from.midY();
    const double along = sign * (across ? dx : dy), aside = std::abs(across ? dy : dx);
    if (along < 1) continue;
    const double distance = along + 2 * aside;
    if (nearest && distance >= least) continue;
    nearest = control;
    least = distance;
  }
  if (!nearest) return false;
  moveTo(nearest, true);
  return true;
}

void KeyboardFocus::moveTo(Node* control, bool shown) {
  focused_ = control;
  shown_ = shown && control;
  if (shown_) scrollIntoView(*control);
  sceneMoved();
}

void KeyboardFocus::pressedOn(Node& node) {
  for (Node* n = &node; n; n = n->parent) {
    if (interactionOf(*n) && interactionOf(*n)->isFocusable()) return moveTo(n, false);
  }
  moveTo(nullptr, false);
}

void KeyboardFocus::hideRing() {
  shown_ = false;
  sceneMoved();
}

void KeyboardFocus::sceneMoved() {
  Node* const node = focused();
  const auto ring = shown_ && node ? std::optional(Scene::presentedFrame(*node)) : std::nullopt;
  if (ring == ring_) return;
  ring_ = ring;
  ringChanges_.notifyObservers();
}

/// Has each window on its content around the control scroll as far as it takes to show it.
void KeyboardFocus::scrollIntoView(Node& control) {
  bool scrolled = false;
  for (Node* window = control.parent; window; window = window->parent) {
    if (!window->element->clips()) continue;
    const Rect frame = Scene::presentedFrame(control), view = Scene::presentedFrame(*window);
    const auto way = [](double low, double high, double first, double last) {
      return low < first ? first - low : high > last ? last - high : 0;
    };
    const Point delta{way(frame.x, frame.right(), view.x, view.right()),
                      way(frame.y, frame.bottom(), view.y, view.bottom())};
    if (delta == Point{} || !window->element->canScroll(*window, delta)) continue;
    window->element->scroll(*window, delta);
    scrolled = true;
  }
  if (scrolled) scene_.scrolled();
}

}  // namespace tarnwick::ui
