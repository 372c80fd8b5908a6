#pragma once
#include <string>

#include "base/Geometry.h"

namespace tarnwick::ui {

/// Keys that are held down besides.
struct Modifiers {
  bool shift = false, control = false, alt = false;
  friend bool operator==(const Modifiers&, const Modifiers&) = default;
};

enum class PointerButton { primary, secondary, middle };

/// What the pointer does on a view with a button held. A press is followed by moves, wherever they go, and
/// ends with a release or, when the view vanishes or the pointer is taken away, with a cancel.
struct PointerEvent {
  enum class Phase { press, move, release, cancel };
  Phase phase;
  /// In the view's own coordinates.
  Point location;
  PointerButton button = PointerButton::primary;
  Modifiers modifiers = {};
  /// 2 for the second press in short time at one place, and so on.
  int clicks = 1;
};

/// The keys that views know by name; the others come as text. `erase` is either of Delete and Backspace.
enum class Key {
  other,
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
  menu,
  erase
};

/// A key that went down, or repeats.
struct KeyEvent {
  Key key = Key::other;
  /// What it types, if anything.
  std::string text = {};
  Modifiers modifiers = {};
};

}  // namespace tarnwick::ui
