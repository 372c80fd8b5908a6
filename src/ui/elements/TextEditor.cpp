#include "ui/TextEditor.h"

#include <QPainter>
#include <QTextLayout>
#include <cmath>
#include <utility>

#include "ui/engine/Drawing.h"
#include "ui/engine/Host.h"
#include "ui/engine/HostedText.h"
#include "ui/engine/Node.h"
#include "ui/engine/Scene.h"
#include "ui/paint/FontBook.h"

namespace tarnwick::ui {

struct KeptText {
  std::unique_ptr<HostedText> hosted;
  /// The editor that shows it.
  const void* user = nullptr;
};

TextMemory makeTextMemory() { return std::make_shared<KeptText>(); }

namespace {

/// What outlasts a description of the editor: the toolkit's own, and what was described last.
struct Editor {
  ~Editor() {
    if (HostedText* const text = hosted()) leave(*text);
  }
  /// Null: there is none yet, or another one shows it.
  HostedText* hosted() const { return memory && memory->user == this ? memory->hosted.get() : nullptr; }
  void adopt(Node& node, Host& host);
  void leave(HostedText& text) const {
    text.onText = nullptr;
    text.onFocus = nullptr;
    text.leave();
    memory->user = nullptr;
  }

  TextMemory memory;
  TextEditorOptions options;
  /// The toolkit's own is in its place.
  bool shown = false;
  bool wantsFocus = false, toldFocus = false;
};

void Editor::adopt(Node& node, Host& host) {
  if (!memory) memory = options.memory ? options.memory : makeTextMemory();
  if (!memory->hosted) memory->hosted = host.makeText();
  memory->user = this;
  memory->hosted->leave();
  memory->hosted->onText = [this](const SharedText& text) {
    if (options.changed) options.changed(text);
  };
  memory->hosted->onFocus = [this, weak = WeakNode(node)](bool focused) {
    // It knows already. A view that leaves is not described anew: what was wished before would come true.
    wantsFocus = toldFocus = focused;
    if (options.focus) options.focus->set(focused);
    if (weak && focused) weak->scene.input().focus(*weak, false);
  };
}

/// What the editor would show first, for scenes without a window.
void drawText(QPainter& painter, const std::string& text, const QFont& font, Color color, Size size) {
  painter.setPen(toQt(color));
  double y = 0;
  for (const QString& paragraph : QString::fromStdString(text).split('\n')) {
    QTextLayout layout(paragraph, font);
    QTextOption option(paragraph.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid() && y < size.height;
         line = layout.createLine()) {
      line.setLineWidth(size.width);
      line.setPosition({0, y});
      y += line.height();
    }
    layout.endLayout();
    layout.draw(&painter, {});
    if (y >= size.height) return;
  }
}

class TextEditorElement : public Element {
 public:
  explicit TextEditorElement(std::shared_ptr<Editor> editor)
      : editor_(std::move(editor)), text_(editor_->options.text) {}
  static constexpr ElementKind itsKind{"TextEditor"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const TextEditorElement&>(other);
    return same.editor_ == editor_ && same.text_ == text_;
  }
  bool affectsLayout(const Element&) const override { return false; }
  bool draws() const override { return true; }
  bool drawsOverItself() const override { return true; }
  bool presented(Node& node, bool undisturbed) const override;
  void draw(DrawContext& context) const override;

 private:
  std::shared_ptr<Editor> editor_;
  SharedText text_;
};

bool TextEditorElement::presented(Node& node, bool undisturbed) const {
  Host* const host = node.scene.host();
  if (!host) return false;
  if (!editor_->hosted()) {
    // The one that comes has taken it over.
    if (node.leaves()) return false;
    editor_->adopt(node, *host);
  }
  HostedText& hosted = *editor_->hosted();
  const Rect place = node.presentedInScene();
  const bool wasShown = std::exchange(editor_->shown, undisturbed && !node.scene.isCovered(place));
  hosted.setLook(node.environment.font, node.environment.foreground);
  hosted.setText(text_);
  hosted.place({place.x, place.y, node.frame.width, node.frame.height}, editor_->shown);
  if (editor_->wantsFocus != std::exchange(editor_->toldFocus, editor_->wantsFocus))
    hosted.setFocused(editor_->wantsFocus);
  return wasShown != editor_->shown;
}

void TextEditorElement::draw(DrawContext& context) const {
  QPainter& painter = context.painter;
  HostedText* const hosted = editor_->hosted();
  if (!hosted) {
    const Font& font = context.environment.font;
    return drawText(
        painter, text_, fontBook::face(font).font, context.environment.foreground, context.layoutSize);
  }
  if (editor_->shown) return;
  const double scale = std::sqrt(std::abs(painter.deviceTransform().determinant()));
  painter.drawImage(
      QRectF(0, 0, context.layoutSize.width, context.layoutSize.height), hosted->picture(scale));
}

}  // namespace

View TextEditor(TextEditorOptions options) {
  return dynamic({.makeState = [] { return std::make_shared<Editor>(); },
      .body =
          [options = std::move(options)](const std::shared_ptr<void>& state, Date) {
            const auto editor = std::static_pointer_cast<Editor>(state);
            editor->options = options;
            if (options.focus) editor->wantsFocus = *options.focus;
            const auto focus = [editor](bool focused) {
              if (HostedText* const hosted = editor->hosted())
                hosted->setFocused(focused);
              else if (editor->options.focus)
                editor->options.focus->set(focused);
            };
            return View(std::make_shared<TextEditorElement>(editor))
                .onTap([focus] { focus(true); })
                .onFocus(focus)
                .contextMenu([editor] {
                  return editor->hosted() ? editor->hosted()->menu() : std::vector<MenuItem>();
                })
                .cursor(Cursor::text)
                .accessibility(Role::textField, options.name);
          }});
}

}  // namespace tarnwick::ui
