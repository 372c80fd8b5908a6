#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <cmath>
#include <optional>
#include <unordered_map>

#include "ui/engine/Drawing.h"
#include "ui/engine/Node.h"
#include "ui/paint/FontBook.h"

namespace tarnwick::ui {
namespace {

/// In code units; what is longer is drawn in parts.
constexpr qsizetype longestCluster = 16;

/// A monospaced font, by its cells.
class Cells {
 public:
  explicit Cells(const fontBook::Face& face)
      : face_(face),
        raw_(QRawFont::fromFont(face.font)),
        width_(face.metrics.horizontalAdvance(QLatin1Char('0'))),
        height_(std::ceil(face.metrics.height())),
        baseline_(std::round(face.metrics.ascent())) {}

  double width() const { return width_; }
  double height() const { return height_; }
  double baseline() const { return baseline_; }
  const QRawFont& raw() const { return raw_; }
  const QFont& font() const { return face_.font; }

  /// What is drawn as one: how many code units it takes, how wide it is, and its glyph where it is one of
  /// this font. Each is drawn by itself, so that nothing turns round or melts together what stands side by
  /// side.
  struct Cell {
    qsizetype length;
    double width;
    std::optional<quint32> glyph;
  };
  Cell at(const QString& text, qsizetype start) {
    const char16_t first = text[start].unicode();
    const bool isAlone = start + 1 == text.size() || isSimple(text[start + 1].unicode());
    if (isSimple(first) && isAlone) {
      if (const quint32 glyph = glyphOf(first)) return {1, width_, glyph};
    }
    const QString around = text.mid(start, longestCluster);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, around);
    const qsizetype length = std::max<qsizetype>(finder.toNextBoundary(), 1);
    return {length, widthOf(text.mid(start, length)), std::nullopt};
  }

 private:
  /// Letters and signs that nothing but a mark joins.
  static bool isSimple(char16_t unit) {
    return (unit >= 0x20 && unit < 0x300) || (unit >= 0x370 && unit < 0x483) ||
           (unit >= 0x2010 && unit < 0x2600);
  }
  quint32 glyphOf(char16_t unit) {
    const auto [known, isNew] = glyphs_.try_emplace(unit, 0);
    if (isNew) {
      const auto glyphs = raw_.glyphIndexesForString(QString(QChar(unit)));
      known->second = glyphs.size() == 1 ? glyphs[0] : 0;
    }
    return known->second;
  }
  double widthOf(const QString& cluster) {
    const auto [known, isNew] = widths_.try_emplace(cluster.toStdU16String(), 0);
    if (isNew) known->second = std::max(width_, std::ceil(face_.metrics.horizontalAdvance(cluster)));
    return known->second;
  }

  const fontBook::Face& face_;
  const QRawFont raw_;
  const double width_, height_, baseline_;
  std::unordered_map<char16_t, quint32> glyphs_;
  std::unordered_map<std::u16string, double> widths_;
};

class TextLinesElement : public Element {
 public:
  explicit TextLinesElement(std::vector<TextLine> lines) : lines_(std::move(lines)) {}
  static constexpr ElementKind itsKind{"TextLines"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    return static_cast<const TextLinesElement&>(other).lines_ == lines_;
  }
  bool draws() const override { return true; }
  bool drawsOverItself() const override { return true; }
  Measured measure(Node& node, Proposal proposal) const override {
    const double width = proposal.width.value_or(infinity);
    wrap(node.environment.font, width);
    const double wanted = std::ceil(widest_ * node.pixelRatio) / node.pixelRatio;
    return {{proposal.width.value_or(wanted), double(rows_.size()) * cells_->height()}, cells_->baseline()};
  }
  void draw(DrawContext& context) const override;
  std::string content() const override;

 private:
  /// What fits side by side of a line.
  struct Row {
    size_t line;
    qsizetype begin, end;
  };
  struct Line {
    QString text;
    /// Where each piece ends.
    std::vector<qsizetype> ends;
  };
  void wrap(const Font& font, double width) const;
  void drawRow(DrawContext& context, const Row& row, double y) const;

  std::vector<TextLine> lines_;
  mutable std::optional<Font> font_;
  mutable std::optional<Cells> cells_;
  mutable std::vector<Line> texts_;
  mutable double width_ = -1, widest_ = 0;
  mutable std::vector<Row> rows_;
};

void TextLinesElement::wrap(const Font& font, double width) const {
  if (font_ == font && width_ == width) return;
  if (font_ != font) cells_.emplace(fontBook::face(font));
  font_ = font;
  width_ = width;
  rows_.clear();
  if (texts_.empty()) {
    for (const TextLine& line : lines_) {
      Line& text = texts_.emplace_back();
      for (const TextPiece& piece : line.pieces) {
        text.text += QString::fromStdString(piece.text);
        text.ends.push_back(text.text.size());
      }
    }
  }
  const double indentation = wrappedIndent * cells_->width();
  for (size_t line = 0; line < texts_.size(); ++line) {
    const QString& text = texts_[line].text;
    qsizetype begin = 0;
    double x = 0;
    for (qsizetype at = 0; at < text.size();) {
      const auto cell = cells_->at(text, at);
      if (x + cell.width > width && at > begin) {
        rows_.push_back({line, begin, at});
        begin = at;
        x = indentation;
      }
      x += cell.width;
      widest_ = std::max(widest_, x);
      at += cell.length;
    }
    rows_.push_back({line, begin, text.size()});
  }
}

void TextLinesElement::draw(DrawContext& context) const {
  wrap(context.environment.font, context.layoutSize.width);
  const double height = cells_->height();
  size_t first = 0, last = rows_.size();
  if (context.painter.hasClipping()) {
    const QRectF seen = context.painter.clipBoundingRect();
    first = std::min(last, size_t(std::max(0.0, std::floor(seen.top() / height))));
    last = std::clamp(size_t(std::max(0.0, std::ceil(seen.bottom() / height))), first, last);
  }
  for (size_t row = first; row < last; ++row) drawRow(context, rows_[row], double(row) * height);
}

void TextLinesElement::drawRow(DrawContext& context, const Row& row, double y) const {
  QPainter& painter = context.painter;
  const TextLine& line = lines_[row.line];
  if (line.background.alpha > 0)
    painter.fillRect(QRectF(0, y, context.layoutSize.width, cells_->height()), toQt(line.background));
  const auto& [text, ends] = texts_[row.line];
  const double baseline = y + cells_->baseline();
  double x = row.begin > 0 ? wrappedIndent * cells_->width() : 0;
  size_t piece = 0;
  QList<quint32> glyphs;
  QList<QPointF> places;
  const auto flush = [&] {
    if (glyphs.isEmpty()) return;
    QGlyphRun run;
    run.setRawFont(cells_->raw());
    run.setGlyphIndexes(glyphs);
    run.setPositions(places);
    painter.drawGlyphRun({}, run);
    glyphs.clear();
    places.clear();
  };
  painter.setFont(cells_->font());
  for (qsizetype at = row.begin; at < row.end;) {
    const size_t before = piece;
    while (at >= ends[piece]) ++piece;
    if (piece != before || at == row.begin) {
      flush();
      painter.setPen(toQt(line.pieces[piece].color.value_or(context.environment.foreground)));
    }
    const auto cell = cells_->at(text, at);
    if (cell.glyph) {
      glyphs.push_back(*cell.glyph);
      places.push_back({x, baseline});
    } else {
      painter.drawText(QPointF(x, baseline), text.mid(at, cell.length));
    }
    x += cell.width;
    at += cell.length;
  }
  flush();
}

std::string TextLinesElement::content() const {
  std::string all;
  for (const TextLine& line : lines_) {
    for (const TextPiece& piece : line.pieces) all += piece.text;
    all += '\n';
  }
  return all;
}

}  // namespace

View TextLines(std::vector<TextLine> lines) {
  return View(std::make_shared<TextLinesElement>(std::move(lines)));
}

}  // namespace tarnwick::ui
