#include "views/ButtonStyles.h"

#include "ui/Dynamic.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Animation pressChange = spring(0.2, 0.6);

/// One of three values, by what the pointer does with a control.
double byPointer(bool pressed, bool hovering, double whilePressed, double whileHovering, double atRest) {
  return pressed ? whilePressed : hovering ? whileHovering : atRest;
}

}  // namespace

ButtonStyle pressScaleStyle() {
  return [](View label, bool pressed, bool) {
    return Group(label).scaleEffect(pressed ? 0.88 : 1).animation(pressChange, pressed);
  };
}

ButtonStyle notchButtonStyle(double size, double hoverScale) {
  return [=](View label, bool pressed, bool hovering) {
    return label.frame({.width = size, .height = size})
        .contentShape(Circle())
        .background(Circle().fill(white(byPointer(pressed, hovering, 0.22, 0.12, 0))))
        .scaleEffect(byPointer(pressed, hovering, 0.86, hoverScale, 1))
        .animation(spring(0.26, 0.6), hovering)
        .animation(pressChange, pressed);
  };
}

ButtonStyle notchPillButtonStyle() {
  return [](View label, bool pressed, bool hovering) {
    return label.padding(Edge::horizontal, 12)
        .padding(Edge::vertical, 6)
        .contentShape(Capsule())
        .background(Capsule().fill(white(byPointer(pressed, hovering, 0.24, 0.16, 0.08))))
        .scaleEffect(pressed ? 0.94 : 1)
        .animation(spring(0.25, 0.7), hovering)
        .animation(pressChange, pressed);
  };
}

View hoverLift(View content, double scale) {
  return stateful(false, [=](State<bool> hovering) {
    return Group(content)
        .scaleEffect(hovering ? scale : 1)
        .brightness(hovering ? 0.06 : 0)
        .animation(spring(0.3, 0.65), hovering.get())
        .onHover(hovering);
  });
}

}  // namespace tarnwick
