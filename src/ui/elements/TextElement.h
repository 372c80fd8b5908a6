#pragma once
#include <QGlyphRun>
#include <QList>
#include <string>
#include <utility>

#include "ui/engine/Element.h"

class QFont;
class QString;

namespace tarnwick::ui {

namespace fontBook {
struct Face;
}

/// One line of text.
class TextElement : public Element {
 public:
  explicit TextElement(std::string text) : text_(std::move(text)) {}
  static constexpr ElementKind itsKind{"Text"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override;
  std::vector<double> animatedValues(const Environment& environment) const override;
  Measured measure(Node& node, Proposal proposal) const override;
  void draw(DrawContext& context) const override;
  bool draws() const override { return true; }
  /// Glyphs may lean over the edges of their cells.
  double overflow() const override { return 2; }
  std::string content() const override { return text_; }

 private:
  /// The text as glyphs, cut to fit.
  struct Shaped {
    const fontBook::Face* face = nullptr;
    bool equalDigits = false;
    Truncation truncation = {};
    double space = 0;
    QList<QGlyphRun> runs = {};

    bool isFor(const Shaped& wanted) const {
      return face == wanted.face && equalDigits == wanted.equalDigits && truncation == wanted.truncation &&
             space == wanted.space;
    }
  };
  void shape(QString text) const;
  /// What it takes to show all of it, in points; measured once.
  double naturalWidth(const QString& text, const fontBook::Face& face, bool equalDigits) const;
  void prepare(DrawContext& context, const QFont& font) const;
  void drawLine(DrawContext& context, double space) const;
  void drawRolling(DrawContext& context, const TextElement& before) const;

  std::string text_;
  mutable Shaped shaped_;
  mutable std::pair<const fontBook::Face*, bool> measured_;
  mutable double width_ = 0;
};

}  // namespace tarnwick::ui
