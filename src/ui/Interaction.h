#pragma once
#include <functional>
#include <optional>
#include <string>

#include "ui/Shape.h"

namespace tarnwick::ui {

/// What a control is for assistive technology.
enum class Role { none, button, slider, list, text, image, notification };

/// A drag of the pointer with the button held, in the view's own coordinates.
struct DragValue {
  Point start;
  Point location;
  /// The view's size.
  Size size;
};

/// What a view does with the pointer.
struct Interaction {
  /// The area that counts; the frame where there is none.
  std::optional<Shape> hitShape;
  std::function<void()> onTap;
  std::function<void()> onDoubleTap;
  std::function<void(bool hovering)> onHover;
  /// The button went down on the view, left it while held, came back, or was released.
  std::function<void(bool pressed)> onPress;
  std::function<void(const DragValue&)> onDrag;
  std::function<void(const DragValue&)> onDragEnd;
  /// Points to move before a drag counts; at 0 the press itself does.
  double dragDistance = 0;
  std::string tooltip;
  Role role = Role::none;
  std::string accessibilityName;
  /// Of a control that is on or off.
  std::optional<bool> checked;
  /// Nothing in this view or below takes the pointer.
  bool disabled = false;
};

}  // namespace tarnwick::ui
