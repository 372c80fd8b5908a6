#pragma once
#include <functional>
#include <string>

#include "base/Geometry.h"

namespace tarnwick::ui {

enum class PointerButton { left, middle, right };

struct Modifiers {
  bool shift = false, control = false, alt = false, meta = false;
  friend bool operator==(Modifiers, Modifiers) = default;
};

/// A click: a button that was pressed and released on a view.
struct PointerEvent {
  PointerButton button = PointerButton::left;
  Modifiers modifiers;
  /// 2 for the second one of a double click, and so on.
  int clickCount = 1;
  /// In the view's own coordinates.
  Point location;
  /// The view's size.
  Size size;
};

/// A drag of the pointer with the left button held, in the view's own coordinates.
struct DragValue {
  Point start;
  Point location;
  /// The view's size.
  Size size;
  /// At its end: the drag was broken off, as the view has vanished or the pointer was taken away. What it has
  /// changed so far may be undone.
  bool cancelled = false;
};

/// The keys that move about and act; all others are `text`.
enum class Key {
  text,
  tab,
  enter,
  space,
  escape,
  left,
  right,
  up,
  down,
  home,
  end,
  pageUp,
  pageDown,
  backspace,
  deleteForward,
};

struct KeyEvent {
  Key key = Key::text;
  /// What the key types, in UTF-8; may be empty.
  std::string text;
  Modifiers modifiers;
  /// The key is held down.
  bool isRepeat = false;
};

/// How far along a control is, for assistive technology.
struct AccessibleValue {
  double now = 0, least = 0, most = 1;
  /// What one press of a key changes.
  double step = 0;
  /// Called with a value between `least` and `most`; may be empty.
  std::function<void(double)> change;
};

}  // namespace tarnwick::ui
