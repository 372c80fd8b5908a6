#include "ui/engine/FocusRing.h"

#include "ui/Dynamic.h"

namespace tarnwick::ui {

View focusRing(const KeyboardFocus& focus) {
  return observing([&focus] {
           if (!focus.ring()) return View();
           constexpr double gap = 2, width = 2, roundest = 9;
           const Rect ring = focus.ring()->grownBy(gap, gap);
           return RoundedRectangle(std::min({ring.width / 2, ring.height / 2, roundest}))
               .stroke(white(0.85), {.width = width, .inside = true})
               .frame({.width = ring.width, .height = ring.height})
               .offset(ring.origin());
         })
      .frame({.maxWidth = infinity, .maxHeight = infinity, .align = UnitPoint::topLeading})
      .allowsHitTesting(false);
}

}  // namespace tarnwick::ui
