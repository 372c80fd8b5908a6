#include "ui/engine/Presenter.h"

#include <cmath>
#include <numbers>

#include "ui/engine/Drawing.h"

namespace tarnwick::ui {
namespace {

/// A Gaussian is below half a level of 255 at this many standard deviations.
constexpr double blurReach = 3;
constexpr double bounceHeight = 0.24;

Rect intersection(const Rect& a, const Rect& b) {
  const double left = std::max(a.x, b.x), top = std::max(a.y, b.y);
  return {left, top, std::max(0.0, std::min(a.right(), b.right()) - left),
      std::max(0.0, std::min(a.bottom(), b.bottom()) - top)};
}

bool contains(const Rect& a, const Rect& b) {
  constexpr double slack = 0.01;
  return b.x >= a.x - slack && b.y >= a.y - slack && b.right() <= a.right() + slack &&
         b.bottom() <= a.bottom() + slack;
}

void apply(QTransform& transform, const Effects& effects, Size size) {
  if (effects.scaleX == 1 && effects.scaleY == 1 && effects.rotation == 0) {
    transform.translate(effects.offset.x, effects.offset.y);
    return;
  }
  const double ax = effects.anchor.x * size.width, ay = effects.anchor.y * size.height;
  transform.translate(effects.offset.x + ax, effects.offset.y + ay);
  transform.rotate(effects.rotation);
  transform.scale(effects.scaleX, effects.scaleY);
  transform.translate(-ax, -ay);
}

/// A text is drawn for the size that it was laid out for, also while its frame is on its way there, and the
/// one before it for its own.
Rect drawnBox(const Node& node) {
  Size size = node.presentedSize;
  for (const Size& other : {node.frame.size(), node.previous ? node.previousSize : Size{}}) {
    size = {std::max(size.width, other.width), std::max(size.height, other.height)};
  }
  return {0, 0, size.width, size.height};
}

}  // namespace

void Presenter::present(Node& root, const Rect& window) { present(root, {{}, window, true, true, false, 0}); }

bool Presenter::advance(Node& node) {
  bool redraw = node.values.update(now_);
  if (node.change.update(now_)) redraw = true;
  if (node.previous && !node.change.isMoving()) {
    node.previous = nullptr;
    redraw = true;
  }
  for (AnimatedValues* motion :
      {&node.frameMotion, &node.effects, &node.transition, &node.clip, &node.shadows, &node.bounce}) {
    motion->update(now_);
  }
  return redraw;
}

Rect Presenter::mapped(const Node& node, const Rect& rect) const {
  return rect.isEmpty() ? Rect{} : fromQt(node.transform.mapRect(toQt(rect)));
}

/// Sets transforms, size and effects of the node; the bounds follow from the inside out.
void Presenter::placeInScene(Node& node, const Outer& outer) {
  const Rect frame = node.presentedFrame();
  const Size size{std::max(0.0, frame.width), std::max(0.0, frame.height)};
  const Effects own = effectsOf(node.effects.presented(), node.attributes.effects.anchor);
  const Effects passing = effectsOf(node.transition.presented(), node.transitionAnchor);
  QTransform local = QTransform::fromTranslate(frame.x, frame.y);
  apply(local, passing, size);
  apply(local, own, size);
  if (node.bounce.isMoving()) {
    const double phase = node.bounce.presented()[0];
    const double scale = 1 + bounceHeight * std::sin(phase * std::numbers::pi) * (1 - phase * 0.4);
    apply(local, {.scaleX = scale, .scaleY = scale}, size);
  }
  node.local = local;
  node.transform = local * outer.transform;
  node.contentTransform = node.transform;
  node.presentedSize = size;
  if (node.element->scalesContent() && node.frame.width > 0 && node.frame.height > 0) {
    node.contentTransform.scale(size.width / node.frame.width, size.height / node.frame.height);
  }
  const Point scrolled = node.element->scrolled(node);
  node.contentTransform.translate(-scrolled.x, -scrolled.y);
  node.opacity = std::clamp(own.opacity, 0.0, 1.0) * std::clamp(passing.opacity, 0.0, 1.0);
  node.blurRadius = std::max(0.0, own.blur) + std::max(0.0, passing.blur);
  node.brightening = own.brightness + passing.brightness;
}

/// @return true when the node looks different to the one around it.
bool Presenter::present(Node& node, const Outer& outer) {
  const QTransform oldLocal = node.local, oldTransform = node.transform;
  const Size oldSize = node.presentedSize;
  const double oldOpacity = node.opacity, oldBlur = node.blurRadius, oldBrightening = node.brightening;
  const std::vector<double> oldClip = node.clip.presented(), oldShadows = node.shadowsShown;
  const Rect oldBounds = node.bounds, oldOwn = node.ownBounds;
  const bool wasVisible = node.visible;

  bool redraw = advance(node) || node.needsDraw;
  placeInScene(node, outer);
  const bool looksChanged =
      oldSize != node.presentedSize || oldOpacity != node.opacity || oldBlur != node.blurRadius ||
      oldBrightening != node.brightening || oldClip != node.clip.presented() ||
      oldShadows != node.shadows.presented();
  node.shadowsShown = node.shadows.presented();
  const bool movedInScene = looksChanged || oldTransform != node.transform;
  const bool movedInParent = looksChanged || oldLocal != node.local;

  const bool clips = node.attributes.clip || node.element->clips();
  const Rect box{0, 0, node.presentedSize.width, node.presentedSize.height};
  const double overflow = node.element->overflow(node.environment);
  node.ownBounds =
      node.element->draws() || node.hasFocusRing
          ? mapped(node, drawnBox(node).grownBy(overflow, overflow))
          : Rect{};
  const Rect clip = clips ? intersection(outer.clip, mapped(node, box)) : outer.clip;
  const bool shown = outer.visible && node.opacity > 0.002 && std::abs(node.transform.determinant()) > 1e-6;
  const bool undisturbed =
      outer.undisturbed && !node.isLeaving && node.opacity > 0.998 && node.blurRadius == 0 &&
      node.brightening == 0 && node.transform.type() <= QTransform::TxTranslate;
  redraw |= node.element->presented(node, undisturbed && contains(outer.clip, node.presentedInScene()));

  const double scale = std::sqrt(std::abs(node.transform.determinant()));
  const double blurSpread = blurReach * node.blurRadius * scale;
  const bool covered = outer.covered || movedInScene;
  Rect bounds = node.ownBounds;
  bool inside = node.childrenChanged;
  for (auto* list : {&node.leaving, &node.children}) {
    for (const auto& child : *list) {
      inside |= present(
          *child, {node.contentTransform, clip, shown, undisturbed, covered, outer.spread + blurSpread});
      bounds = bounds.united(child->bounds);
    }
  }
  if (clips) bounds = intersection(bounds, mapped(node, box));
  node.contentBounds = bounds;
  // A group is drawn at whole pixels, up to half of one beside its place.
  const bool grouped =
      node.attributes.clip || node.opacity < 1 || node.blurRadius > 0 || node.brightening != 0;
  const double spread = blurSpread + (grouped ? 1 : 0);
  bounds = bounds.grownBy(spread, spread);
  for (const Attributes::Shadow& shadow : shadowsOf(node.shadows.presented())) {
    const double reach = blurReach * shadow.radius * scale;
    bounds = bounds.united(
        node.contentBounds.movedBy({shadow.offset.x * scale, shadow.offset.y * scale}).grownBy(reach, reach));
  }
  node.bounds = shown ? bounds : Rect{};
  node.visible = shown && intersection(node.bounds, outer.clip).width > 0;

  // What repeats for ever out of sight needs no frames; unless it is its own effect that hides it for a
  // moment.
  const bool seen =
      node.visible || (outer.visible && (node.effects.isMoving() || node.transition.isMoving()));
  const bool settling = node.isSettling();
  settling_ |= settling;
  moving_ |= seen ? node.isMoving() : settling;

  const bool changed = redraw || inside;
  if (changed) {
    node.group.reset();
    node.castShadow.reset();
  }
  if (!outer.covered && (wasVisible || node.visible)) {
    const auto damage = [&](const Rect& rect) {
      if (!rect.isEmpty()) damage_(intersection(rect.grownBy(outer.spread, outer.spread), outer.clip));
    };
    const bool castsItsPicture = !node.attributes.shadows.empty() && !node.attributes.clip;
    if (movedInScene || wasVisible != node.visible || (changed && castsItsPicture)) {
      damage(oldBounds);
      damage(node.bounds);
    } else if (redraw) {
      damage(oldOwn.grownBy(blurSpread, blurSpread));
      damage(node.ownBounds.grownBy(blurSpread, blurSpread));
    }
  }
  node.needsDraw = node.childrenChanged = false;
  return changed || movedInParent;
}

}  // namespace tarnwick::ui
