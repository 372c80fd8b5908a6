#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/SharedText.h"
#include "ui/Dynamic.h"

namespace tarnwick::ui {

/// What an editor knows beyond its text: what can be undone, the caret, how far it is scrolled. Editors that
/// are shown with the same one, one at a time, go on where the one before has ended, unless the text is
/// another one. It must not outlive the scene's window.
struct KeptText;
using TextMemory = std::shared_ptr<KeptText>;
TextMemory makeTextMemory();

struct TextEditorOptions {
  /// What assistive technology calls it.
  std::string name;
  /// The text to show, in UTF-8, and what to do with it when the user has changed it.
  SharedText text;
  std::function<void(const SharedText& text)> changed = nullptr;
  /// Follows the keyboard's focus, and moves it when it is set.
  std::optional<State<bool>> focus = {};
  /// Null: it forgets when its view goes.
  TextMemory memory = nullptr;
};

/// Several lines of text to write in, in the inherited font and colour, without a background of its own. At
/// rest it is the toolkit's editor; where the scene has no window, or something moves it, a picture of that.
View TextEditor(TextEditorOptions options);

}  // namespace tarnwick::ui
