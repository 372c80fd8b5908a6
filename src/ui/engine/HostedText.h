#pragma once
#include <QImage>
#include <functional>
#include <string>
#include <vector>

#include "base/Color.h"
#include "base/Geometry.h"
#include "base/SharedText.h"
#include "ui/Font.h"
#include "ui/Menu.h"

namespace tarnwick::ui {

/// A text editor of the toolkit, with all that it brings: input methods, selection, clipboard, undo.
class HostedText {
 public:
  virtual ~HostedText() = default;

  /// In UTF-8. The text that it has already changes nothing.
  virtual void setText(const SharedText& text) = 0;
  virtual void setLook(const Font& font, Color color) = 0;
  /// Where it is, in points of the scene; to be seen there or, while something is in the way, not.
  virtual void place(const Rect& frame, bool shown) = 0;
  /// No view shows it any more: it is not to be seen, and gives the keyboard back where it has it.
  virtual void leave() = 0;
  /// What it looks like, at `scale` pixels a point.
  virtual QImage picture(double scale) = 0;
  /// Gives it the keyboard's focus, or takes it away.
  virtual void setFocused(bool focused) = 0;
  /// What can be done with its text at the moment.
  virtual std::vector<MenuItem> menu() = 0;

  /// The user has changed the text.
  std::function<void(const SharedText& text)> onText;
  /// It has come by the keyboard's focus, or lost it.
  std::function<void(bool focused)> onFocus;
};

}  // namespace tarnwick::ui
