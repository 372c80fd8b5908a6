#include "ui/Transition.h"

namespace tarnwick::ui {

Transition Transition::opacity() { return {.insertion = {.opacity = 0}, .removal = {.opacity = 0}}; }

Transition Transition::scale(double scale, UnitPoint anchor) {
  const Effects effects{.scaleX = scale, .scaleY = scale, .anchor = anchor};
  return {.insertion = effects, .removal = effects};
}

Transition Transition::combined(const Transition& other) const {
  const auto combine = [](const Effects& a, const Effects& b) {
    Effects both = a;
    both.opacity *= b.opacity;
    both.blur += b.blur;
    both.brightness += b.brightness;
    both.scaleX *= b.scaleX;
    both.scaleY *= b.scaleY;
    both.rotation += b.rotation;
    both.offset = a.offset + b.offset;
    if (b.scaleX != 1 || b.scaleY != 1) both.anchor = b.anchor;
    return both;
  };
  return {.insertion = combine(insertion, other.insertion),
      .removal = combine(removal, other.removal),
      .insertionAnimation = other.insertionAnimation ? other.insertionAnimation : insertionAnimation,
      .removalAnimation = other.removalAnimation ? other.removalAnimation : removalAnimation,
      .governsPredecessor = governsPredecessor || other.governsPredecessor};
}

Transition Transition::andPredecessor() const {
  Transition copy = *this;
  copy.governsPredecessor = true;
  return copy;
}

}  // namespace tarnwick::ui
