#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/FilePath.h"
#include "ui/Events.h"
#include "ui/Shape.h"

namespace tarnwick::ui {

enum class Axis { horizontal, vertical };

/// What the pointer looks like.
enum class Cursor { arrow, pointingHand, grab, text };

/// What a control is for assistive technology.
enum class Role {
  none,
  button,
  menuButton,
  menu,
  menuItem,
  slider,
  textField,
  list,
  text,
  image,
  notification
};

/// A drag of the pointer with the button held, in the view's own coordinates.
struct DragValue {
  Point start;
  Point location;
  /// The view's size.
  Size size;
};

/// What is done with a drag. Each may be absent.
struct DragGesture {
  /// Points to move before it counts; at 0 the press itself does.
  double minimumDistance = 0;
  std::function<void(const DragValue&)> changed = nullptr;
  std::function<void(const DragValue&)> ended = nullptr;
  /// It ended without a release: the view has vanished, or something else took the pointer.
  std::function<void()> cancelled = nullptr;
};

/// What a control is set to, for keys and assistive technology.
struct AdjustableValue {
  double now = 0, least = 0, most = 1;
  /// What an arrow key alters.
  double step = 0.05;
  /// How it is read out; the number where it is empty.
  std::string text = {};
  /// Called with values from `least` to `most`.
  std::function<void(double)> set;
};

struct MenuItem;

/// What a view does with pointer and keys. Where several handlers of one kind are set on a view, all run.
struct Interaction {
  /// The area that counts; the frame where there is none.
  std::optional<Shape> hitShape;
  /// All that a button of the pointer does. @return true to have the rest of the gesture; nothing else is
  /// then made of it.
  std::function<bool(const PointerEvent&)> onPointer;
  std::function<void()> onTap;
  std::function<void()> onDoubleTap;
  std::function<void(bool hovering)> onHover;
  /// The button went down on the view, left it while held, came back, or was released.
  std::function<void(bool pressed)> onPress;
  std::vector<DragGesture> drags;
  /// The keyboard's focus may be on it although nothing is done by a click.
  bool focusable = false;
  /// The menu that a press opens below the view, and the one that opens at the pointer for the secondary
  /// button.
  std::function<std::vector<MenuItem>()> menu, contextMenu;
  /// The files that a drag of the view takes out of the window.
  std::function<std::vector<FilePath>()> files;
  std::optional<Cursor> cursor;
  /// A key, while the keyboard's focus is on the view or inside of it; for a view that takes no focus also
  /// where nobody else has used it. @return true when it has been used.
  std::function<bool(const KeyEvent&)> onKey;
  /// The keyboard's focus came or went. A view with such a handler shows it by itself, others get a ring.
  std::function<void(bool focused)> onFocus;
  /// Arrow keys along this axis go from one control inside to the next, and Tab stops here once.
  std::optional<Axis> arrows;
  /// While the view is there keys and focus stay inside.
  bool modal = false;
  std::string tooltip;
  Role role = Role::none;
  std::string accessibilityName;
  /// Of a control that is on or off.
  std::optional<bool> checked;
  std::optional<AdjustableValue> value;
  /// Nothing in this view or below takes the pointer or the keyboard.
  bool disabled = false;

  /// What keys and assistive technology do with it: what a click does, else what a double click does.
  const std::function<void()>& action() const { return onTap ? onTap : onDoubleTap; }
  /// Whether the keyboard's focus may be on it: a control that does something, or is `focusable`.
  bool takesFocus() const {
    return role != Role::none && (focusable || action() || menu || (value && value->set));
  }
};

}  // namespace tarnwick::ui
