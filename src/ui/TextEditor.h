#pragma once
#include <functional>
#include <optional>
#include <string>

#include "base/SharedText.h"
#include "ui/Dynamic.h"

namespace tarnwick::ui {

struct TextEditorOptions {
  /// What assistive technology calls it.
  std::string name;
  /// The text to show, in UTF-8, and what to do with it when the user has changed it.
  SharedText text;
  std::function<void(const SharedText& text)> changed = nullptr;
  /// Follows the keyboard's focus, and moves it when it is set.
  std::optional<State<bool>> focus = {};
};

/// Several lines of text to write in, in the inherited font and colour, without a background of its own. At
/// rest it is the toolkit's editor; where the scene has no window, or something moves it, a picture of that.
View TextEditor(TextEditorOptions options);

}  // namespace tarnwick::ui
