#include "ui/engine/Tooltip.h"

#include "ui/Beside.h"
#include "ui/Dynamic.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {
namespace {

/// Seconds that the pointer rests before it shows.
constexpr double delay = 0.7;
constexpr char bubbleKey[] = "tooltip";

}  // namespace

void Tooltip::pointerMoved(Node* node, Point point) {
  hide();
  node_ = node;
  if (!node) return;
  timer_ = scene_.after(delay, [this, point] {
    if (node_ && node_->attributes.interaction)
      show(Shown{node_->attributes.interaction->tooltip, point, surfaceOf(*node_)});
  });
}

void Tooltip::viewChanged(Node* node, Point point) {
  if (node != node_ || (shown_ && !node)) pointerMoved(node, point);
}

void Tooltip::hide() {
  timer_ = {};
  show(std::nullopt);
}

void Tooltip::show(std::optional<Shown> shown) {
  if (shown.has_value() == shown_.has_value()) return;
  shown_ = std::move(shown);
  withAnimation(easeOut(0.15), [this] { changes_.notifyObservers(); });
}

/// What the outermost clip around a view leaves of the scene: beyond it there may be another program's
/// window.
Rect Tooltip::surfaceOf(const Node& node) const {
  Rect surface{0, 0, scene_.size().width, scene_.size().height};
  for (const Node* n = &node; n; n = n->parent) {
    if (n->attributes.clip) surface = n->presentedInScene();
  }
  return surface;
}

std::optional<Rect> Tooltip::frame() const { return scene_.presentedFrame(bubbleKey); }

View Tooltip::view() const {
  return observing([this] {
    changes_.noteRead();
    if (!shown_) return View();
    View bubble =
        Text(shown_->text)
            .font({11, Weight::medium})
            .foreground(white(0.92))
            .padding(Edge::horizontal, 8)
            .padding(Edge::vertical, 4)
            .background(RoundedRectangle(6).fill(Color{0.17, 0.17, 0.18, 0.97}))
            .overlay(RoundedRectangle(6).stroke(white(0.12), {.width = 1, .inside = true}))
            .id(bubbleKey);
    const Point point = shown_->point;
    return Beside(
        {.anchor = {point.x, point.y, 0, 0},
            .surface = shown_->surface,
            .below = 18,
            .above = 8,
            .margin = 12},  // room for the surface's round corners
        std::move(bubble))
        .allowsHitTesting(false);
  });
}

}  // namespace tarnwick::ui
