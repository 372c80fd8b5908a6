#pragma once
#include <functional>
#include <optional>
#include <string>

#include "ui/View.h"

namespace tarnwick::ui {

/// How a button looks: its label, whether the button is held down on it, whether the pointer is over it.
using ButtonStyle = std::function<View(View label, bool pressed, bool hovering)>;

struct ButtonOptions {
  /// What assistive technology calls it.
  std::string name;
  View label;
  /// Without one: the label alone. What it returns takes the pointer.
  ButtonStyle style;
  std::function<void()> action;
  /// Of a button that chooses: whether it is the chosen one, for assistive technology.
  std::optional<bool> checked = {};
};
/// A control that acts when it is clicked.
View Button(ButtonOptions options);

}  // namespace tarnwick::ui
