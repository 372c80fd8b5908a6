#pragma once
#include "base/Color.h"
#include "ui/Font.h"

namespace tarnwick::ui {

/// Where a text that does not fit loses characters.
enum class Truncation { end, middle };

/// How changed content gives way to the new one: at once, cross-fading, digits rolling (in the direction of
/// the change), or a symbol shrinking away while the next one grows.
enum class ContentTransition { identity, opacity, numericText, replace };

/// What a view inherits from the views around it.
struct Environment {
  Font font;
  Color foreground = white();
  Truncation truncation = Truncation::end;
  ContentTransition contentTransition = ContentTransition::identity;
  /// Digits all take the same width.
  bool monospacedDigits = false;

  friend bool operator==(const Environment&, const Environment&) = default;
};

}  // namespace tarnwick::ui
