#pragma once
#include <QPlainTextEdit>
#include <optional>

#include "ui/engine/HostedText.h"

namespace tarnwick::ui {

class SceneWidget;

/// The toolkit's plain text editor on the widget of a scene.
class TextWidget : public HostedText {
 public:
  explicit TextWidget(SceneWidget& scene);
  ~TextWidget() override;

  void setText(const SharedText& text) override;
  void setLook(const Font& font, Color color) override;
  void place(const Rect& frame, bool shown) override;
  void leave() override;
  QImage picture(double scale) override;
  void setFocused(bool focused) override;
  std::vector<MenuItem> menu() override;

 private:
  class Edit;
  void setReturnsToFocus(bool returns);

  SceneWidget& scene_;
  Edit* const edit_;
  std::optional<Font> font_;
  Color color_;
  /// What it shows, as last told or heard.
  SharedText text_;
  /// It has the focus as soon as it is to be seen again, if nothing else of the window has it then.
  bool returnsToFocus_ = false;
};

}  // namespace tarnwick::ui
