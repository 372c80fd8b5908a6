#pragma once
#include <functional>
#include <string>

#include "ui/View.h"

namespace tarnwick {

struct SliderRowOptions {
  /// What assistive technology calls the slider.
  std::string name;
  /// Name of a symbol.
  std::string icon;
  /// What a press of the icon does; nothing: it is no button.
  std::string iconHelp;
  std::function<void()> onIcon;
  /// 0…1
  double value = 0;
  Color tint = white();
  /// What one press of a key changes.
  double step = 0.05;
  bool enabled = true;
  std::function<void(double)> onChange;
};
/// A slider with its icon before it and its percentage behind it.
ui::View sliderRow(SliderRowOptions options);

}  // namespace tarnwick
