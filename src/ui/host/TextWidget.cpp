#include "ui/host/TextWidget.h"

#include <QPainter>
#include <QPointer>
#include <QTextBlock>
#include <QTextLayout>
#include <algorithm>
#include <utility>

#include "base/L10n.h"
#include "ui/engine/Drawing.h"
#include "ui/host/SceneWidget.h"
#include "ui/paint/FontBook.h"

namespace tarnwick::ui {
namespace {

/// Has paragraphs that are read from the right begin there.
class BothDirections : public QPlainTextDocumentLayout {
 public:
  using QPlainTextDocumentLayout::QPlainTextDocumentLayout;

  QRectF blockBoundingRect(const QTextBlock& block) const override {
    // Whoever is after a place in the paragraph has to ask for this first.
    const QRectF rect = QPlainTextDocumentLayout::blockBoundingRect(block);
    const bool fromRight = block.isValid() && block.textDirection() == Qt::RightToLeft;
    const QTextLayout* const lines = fromRight ? block.layout() : nullptr;
    for (int i = 0; lines && i < lines->lineCount(); ++i) {
      QTextLine line = lines->lineAt(i);
      line.setPosition({std::max(0.0, line.width() - line.naturalTextWidth()), line.y()});
    }
    return rect;
  }
};

}  // namespace

/// Leaves to the scene what is the scene's: the background, menus, and the keys that move the focus.
class TextWidget::Edit : public QPlainTextEdit {
 public:
  Edit(SceneWidget& scene, TextWidget& owner) : QPlainTextEdit(&scene), scene_(scene), owner_(&owner) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setContextMenuPolicy(Qt::NoContextMenu);
    auto* text = new QTextDocument(this);
    text->setDocumentLayout(new BothDirections(text));
    text->setDocumentMargin(0);
    setDocument(text);
    viewport()->setAutoFillBackground(false);
    setAutoFillBackground(false);
    hide();
  }

  /// Goes as soon as it is in no event of its own any more, and tells nobody anything until then.
  void release() {
    owner_ = nullptr;
    disconnect();
    deleteLater();
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Tab:
      case Qt::Key_Backtab:
      case Qt::Key_Escape:
      case Qt::Key_Menu:
        return scene_.keyPressEvent(event);
      default:
        QPlainTextEdit::keyPressEvent(event);
    }
  }
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() == Qt::RightButton) return scene_.openMenuAt(event->globalPosition());
    QPlainTextEdit::mousePressEvent(event);
    // A click alone does not bring the keyboard to the window.
    scene_.takeKeyboard();
  }
  void focusInEvent(QFocusEvent* event) override {
    QPlainTextEdit::focusInEvent(event);
    if (owner_ && owner_->onFocus) owner_->onFocus(true);
  }
  void focusOutEvent(QFocusEvent* event) override {
    QPlainTextEdit::focusOutEvent(event);
    if (owner_ && owner_->onFocus) owner_->onFocus(false);
  }
  bool focusNextPrevChild(bool) override { return false; }

 private:
  SceneWidget& scene_;
  TextWidget* owner_;
};

TextWidget::TextWidget(SceneWidget& scene) : scene_(scene), edit_(new Edit(scene, *this)) {
  QObject::connect(edit_, &QPlainTextEdit::textChanged, edit_, [this] {
    text_ = edit_->toPlainText().toStdString();
    if (onText) onText(text_);
  });
}

TextWidget::~TextWidget() {
  leave();
  edit_->release();
}

void TextWidget::leave() {
  const bool focused = edit_->hasFocus();
  setReturnsToFocus(false);
  edit_->hide();
  if (focused) scene_.giveBackKeyboard();
}

void TextWidget::setText(const SharedText& text) {
  if (text_ == text) return;
  text_ = text;
  const QSignalBlocker quiet(edit_);
  edit_->setPlainText(QString::fromStdString(text));
}

void TextWidget::setLook(const Font& font, Color color) {
  if (font_ == font && color_ == color) return;
  font_ = font;
  color_ = color;
  edit_->setFont(fontBook::face(font).font);
  QPalette palette = edit_->palette();
  palette.setColor(QPalette::Text, toQt(color));
  palette.setColor(QPalette::Base, Qt::transparent);
  palette.setColor(QPalette::Highlight, toQt(color.opacity(0.3)));
  palette.setColor(QPalette::HighlightedText, toQt(color));
  edit_->setPalette(palette);
}

void TextWidget::place(const Rect& frame, bool shown) {
  const QRect rect = toQt(frame).toRect();
  if (edit_->geometry() != rect) edit_->setGeometry(rect);
  if (shown == !edit_->isHidden()) return;
  if (!shown && edit_->hasFocus()) {
    scene_.setFocus();
    setReturnsToFocus(true);
  }
  edit_->setVisible(shown);
  if (shown && returnsToFocus_ && scene_.hasFocus()) edit_->setFocus();
  if (shown) setReturnsToFocus(false);
}

QImage TextWidget::picture(double scale) {
  QImage image(edit_->size() * scale, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  image.setDevicePixelRatio(scale);
  edit_->render(&image, {}, {}, QWidget::DrawChildren);
  image.setDevicePixelRatio(1);
  return image;
}

void TextWidget::setFocused(bool focused) {
  setReturnsToFocus(focused && edit_->isHidden());
  if (focused == edit_->hasFocus()) return;
  if (!focused) return scene_.setFocus();
  edit_->isHidden() ? scene_.setFocus() : edit_->setFocus();
  scene_.takeKeyboard();
}

void TextWidget::setReturnsToFocus(bool returns) {
  returnsToFocus_ = returns;
  scene_.setWriting(returns ? edit_ : nullptr);
}

std::vector<MenuItem> TextWidget::menu() {
  // A menu may outlive the editor.
  const QPointer<QPlainTextEdit> e(edit_);
  const bool selected = edit_->textCursor().hasSelection();
  const auto item = [](std::string title, std::function<void()> action, bool enabled) {
    return MenuItem{.title = std::move(title), .action = std::move(action), .enabled = enabled};
  };
  return {item(
              tr("Undo", "Annuler"),
              [e] {
                if (e) e->undo();
              },
              edit_->document()->isUndoAvailable()),
      item(
          tr("Redo", "Rétablir"),
          [e] {
            if (e) e->redo();
          },
          edit_->document()->isRedoAvailable()),
      MenuItem::separator(),
      item(
          tr("Cut", "Couper"),
          [e] {
            if (e) e->cut();
          },
          selected),
      item(
          tr("Copy", "Copier"),
          [e] {
            if (e) e->copy();
          },
          selected),
      item(
          tr("Paste", "Coller"),
          [e] {
            if (e) e->paste();
          },
          edit_->canPaste()),
      item(
          tr("Select all", "Tout sélectionner"),
          [e] {
            if (e) e->selectAll();
          },
          !edit_->document()->isEmpty())};
}

}  // namespace tarnwick::ui
