#pragma once
#include <functional>
#include <optional>
#include <string>

#include "ui/Input.h"
#include "ui/Shape.h"

namespace tarnwick::ui {

/// What a control is for assistive technology.
enum class Role { none, button, slider, list, text, image, notification };

/// What a view does with pointer and keys.
struct Interaction {
  /// The area that counts; the frame where there is none.
  std::optional<Shape> hitShape;
  std::function<void()> onTap;
  std::function<void()> onDoubleTap;
  /// A click of any button, before `onTap`. @return whether it is taken; the views around get it otherwise.
  std::function<bool(const PointerEvent&)> onClick;
  std::function<void(bool hovering)> onHover;
  /// The left button went down on the view, left it while held, came back, or was released.
  std::function<void(bool pressed)> onPress;
  std::function<void(const DragValue&)> onDrag;
  std::function<void(const DragValue&)> onDragEnd;
  /// Points to move before a drag counts; at 0 the press itself does.
  double dragDistance = 0;
  /// A key, for the view that has the keyboard and those around it. @return whether it is taken.
  std::function<bool(const KeyEvent&)> onKey;
  std::string tooltip;
  Role role = Role::none;
  std::string accessibilityName;
  /// Of a control that is on or off.
  std::optional<bool> checked;
  std::optional<AccessibleValue> value;
  /// Nothing in this view or below takes the pointer.
  bool disabled = false;

  /// Tab stops here.
  bool isFocusable() const {
    return (role == Role::button && onTap) || (role == Role::slider && (onKey || value));
  }
};

}  // namespace tarnwick::ui
