#include "ui/engine/Tooltip.h"

#include "ui/Beside.h"
#include "ui/Dynamic.h"

namespace tarnwick::ui {

View tooltipView(const SceneInput& input) {
  return observing([&input] {
    if (!input.tooltip()) return View();
    View bubble = Text(input.tooltip()->text)
                      .font({11, Weight::medium})
                      .foreground(white(0.92))
                      .padding(Edge::horizontal, 8)
                      .padding(Edge::vertical, 4)
                      .background(RoundedRectangle(6).fill(Color{0.17, 0.17, 0.18, 0.97}))
                      .overlay(RoundedRectangle(6).stroke(white(0.12), {.width = 1, .inside = true}));
    return Beside(input.tooltip()->point, input.tooltip()->surface, std::move(bubble))
        .allowsHitTesting(false);
  });
}

}  // namespace tarnwick::ui
