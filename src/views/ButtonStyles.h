#pragma once
#include "ui/Button.h"

/// How the notch's buttons look and answer the pointer.
namespace tarnwick {

/// The label alone, a little smaller while pressed.
ui::ButtonStyle pressScaleStyle();

/// A round icon button `size` points wide, which grows to `hoverScale` under the pointer.
ui::ButtonStyle notchButtonStyle(double size, double hoverScale);

/// A capsule around a text.
ui::ButtonStyle notchPillButtonStyle();

/// For cards and artwork that can be clicked: grows to `scale` and lights up under the pointer.
ui::View hoverLift(ui::View content, double scale);

}  // namespace tarnwick
