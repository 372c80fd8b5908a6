#pragma once
#include <functional>
#include <string>

#include "ui/View.h"

namespace tarnwick::ui {

/// How a button looks: its label, whether the button is held down on it, whether the pointer is over it.
using ButtonStyle = std::function<View(View label, bool pressed, bool hovering)>;

/// A control that runs `action` when it is clicked. The pointer area is what the style returns; `name` is
/// what assistive technology calls it.
View Button(std::string name, std::function<void()> action, View label, ButtonStyle style);

}  // namespace tarnwick::ui
