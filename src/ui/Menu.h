#pragma once
#include <functional>
#include <string>
#include <vector>

#include "ui/Button.h"

namespace tarnwick::ui {

/// One line of a menu.
struct MenuItem {
  std::string title;
  std::function<void()> action = nullptr;
  bool enabled = true;
  /// The one that is chosen, of several.
  bool checked = false;

  /// A line between groups of items.
  static MenuItem separator() { return {.title = {}, .enabled = false}; }
};

struct MenuButtonOptions {
  /// What assistive technology calls it.
  std::string name;
  View label;
  /// Without one: the label alone. What it returns takes the pointer.
  ButtonStyle style;
  /// Makes the menu when it is about to open.
  std::function<std::vector<MenuItem>()> items;
};
/// A button that opens a menu below itself. The menu stays open after a click; a press that is dragged on
/// chooses what it is released over.
View MenuButton(MenuButtonOptions options);

}  // namespace tarnwick::ui
