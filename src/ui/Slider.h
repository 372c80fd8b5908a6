#pragma once
#include <functional>
#include <string>

#include "ui/View.h"

namespace tarnwick::ui {

/// How a slider looks: how far it is filled (0…1), and whether the pointer is over it or holds it.
using SliderStyle = std::function<View(double fraction, bool active)>;

struct SliderOptions {
  /// What assistive technology calls it.
  std::string name;
  double value = 0;
  double least = 0, most = 1;
  /// What one press of a key changes.
  double step = 0.05;
  /// How the value is read out; in percent of the range where it is empty.
  std::string text;
  /// Without one: a white bar. What it returns takes the pointer, from edge to edge.
  SliderStyle style;
  /// Called with each new value on the way.
  std::function<void(double)> changed;
  /// Called with the last one, when the pointer lets go: for what takes effect only then.
  std::function<void(double)> ended;
  /// Called when it never does: the value of before holds.
  std::function<void()> cancelled;
};
/// A value that is set by the pointer, a click included, by keys and by assistive technology. While it is
/// dragged it shows where to, whatever becomes of `value` meanwhile.
View Slider(SliderOptions options);

}  // namespace tarnwick::ui
