#include <QPainter>
#include <QString>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "ui/elements/TextElement.h"
#include "ui/engine/Drawing.h"
#include "ui/engine/Node.h"
#include "ui/paint/FontBook.h"

namespace tarnwick::ui {
namespace {

std::vector<double> colorNumbers(Color color) { return {color.red, color.green, color.blue, color.alpha}; }

/// The sparkle's characters are dingbats, which an emoji font would like to draw.
bool isDingbat(const QString& text) {
  return text.size() == 1 && text[0].unicode() >= 0x2720 && text[0].unicode() <= 0x274F;
}

const fontBook::Face& faceFor(const QString& text, const Font& font) {
  return isDingbat(text) || text == QChar(0xB7) ? fontBook::sparkleFace(font) : fontBook::face(font);
}

/// A text cut into the cells that it is drawn in: digits one by one, of equal width where wanted, the rest in
/// runs.
struct Cell {
  QString text;
  double x;
  double width;
};

std::vector<Cell> cells(const QString& text, const fontBook::Face& face, bool equalDigits) {
  std::vector<Cell> result;
  double x = 0;
  for (qsizetype i = 0; i < text.size();) {
    qsizetype end = i + 1;
    while (!text[i].isDigit() && end < text.size() && !text[end].isDigit()) ++end;
    const bool equal = equalDigits && text[i].isDigit();
    const double width = equal ? face.digitWidth : face.metrics.horizontalAdvance(text.mid(i, end - i));
    result.push_back({text.mid(i, end - i), x, width});
    x += width;
    i = end;
  }
  return result;
}

double width(const QString& text, const fontBook::Face& face, bool equalDigits) {
  if (!equalDigits) return face.metrics.horizontalAdvance(text);
  const std::vector<Cell> parts = cells(text, face, true);
  return parts.empty() ? 0 : parts.back().x + parts.back().width;
}

void drawCell(QPainter& painter, const Cell& cell, const fontBook::Face& face, double baseline) {
  const double own = face.metrics.horizontalAdvance(cell.text);
  painter.drawText(QPointF(cell.x + (cell.width - own) / 2, baseline), cell.text);
}

/// The number in a text, to tell in which direction its digits roll.
double numberIn(const QString& text) {
  QString digits;
  for (const QChar c : text) {
    if (c.isDigit()) digits += c;
  }
  return digits.toDouble();
}

}  // namespace

bool TextElement::equals(const Element& other) const {
  return static_cast<const TextElement&>(other).text_ == text_;
}

std::vector<double> TextElement::animatedValues(const Environment& environment) const {
  return colorNumbers(environment.foreground);
}

Measured TextElement::measure(Node& node, Proposal proposal) const {
  const Environment& environment = node.environment;
  const QString text = QString::fromStdString(text_);
  const fontBook::Face& face = faceFor(text, environment.font);
  double wanted =
      std::ceil(naturalWidth(text, face, environment.monospacedDigits) * node.pixelRatio) / node.pixelRatio;
  if (proposal.width) wanted = std::min(wanted, std::max(0.0, *proposal.width));
  return {{wanted, std::ceil(face.metrics.height())}, std::round(face.metrics.ascent())};
}

double TextElement::naturalWidth(const QString& text, const fontBook::Face& face, bool equalDigits) const {
  const auto known = std::pair(&face, equalDigits);
  if (measured_ != known) {
    measured_ = known;
    width_ = width(text, face, equalDigits);
  }
  return width_;
}

void TextElement::draw(DrawContext& context) const {
  const auto* before = as<TextElement>(context.previous);
  const Environment& environment = context.environment;
  if (before && environment.contentTransition == ContentTransition::numericText)
    return drawRolling(context, *before);
  if (before && context.change < 1) {
    const double opacity = context.painter.opacity();
    context.painter.setOpacity(opacity * (1 - context.change));
    before->drawLine(context, context.previousSize.width);
    context.painter.setOpacity(opacity * context.change);
    drawLine(context, context.layoutSize.width);
    context.painter.setOpacity(opacity);
    return;
  }
  drawLine(context, context.layoutSize.width);
}

void TextElement::prepare(DrawContext& context, const QFont& font) const {
  const std::vector<double>& c = context.values;
  context.painter.setFont(font);
  context.painter.setPen(toQt(Color{c[0], c[1], c[2], c[3]}));
}

void TextElement::drawLine(DrawContext& context, double space) const {
  const Environment& environment = context.environment;
  const QString text = QString::fromStdString(text_);
  const fontBook::Face& face = faceFor(text, environment.font);
  const Shaped wanted{&face, environment.monospacedDigits, environment.truncation, space};
  if (!shaped_.isFor(wanted)) {
    shaped_ = wanted;
    shape(text);
  }
  prepare(context, face.font);
  for (const QGlyphRun& run : shaped_.runs) context.painter.drawGlyphRun({}, run);
}

/// Shaping takes longer than drawing: its result is kept for the next time.
void TextElement::shape(QString text) const {
  const fontBook::Face& face = *shaped_.face;
  if (naturalWidth(text, face, shaped_.equalDigits) > shaped_.space + 0.5) {
    const auto mode = shaped_.truncation == Truncation::middle ? Qt::ElideMiddle : Qt::ElideRight;
    text = face.metrics.elidedText(text, mode, shaped_.space + 0.5);
  }
  const auto add = [&](const QString& part, double x) {
    QTextLayout layout(part, face.font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    layout.endLayout();
    line.setPosition({x, std::round(face.metrics.ascent()) - line.ascent()});
    shaped_.runs += layout.glyphRuns();
  };
  if (!shaped_.equalDigits) return add(text, 0);
  for (const Cell& cell : cells(text, face, true)) {
    add(cell.text, cell.x + (cell.width - face.metrics.horizontalAdvance(cell.text)) / 2);
  }
}

void TextElement::drawRolling(DrawContext& context, const TextElement& before) const {
  const QString text = QString::fromStdString(text_), oldText = QString::fromStdString(before.text_);
  const fontBook::Face& face = faceFor(text, context.environment.font);
  const double up = numberIn(text) >= numberIn(oldText) ? 1 : -1;
  const double travel = face.metrics.height() * 0.7, baseline = std::round(face.metrics.ascent());
  const double progress = std::clamp(context.change, 0.0, 1.0);
  QPainter& painter = context.painter;
  prepare(context, face.font);
  const double opacity = painter.opacity();
  const bool equalDigits = context.environment.monospacedDigits;
  const std::vector<Cell> oldCells = cells(oldText, face, equalDigits),
                          newCells = cells(text, face, equalDigits);
  // Counted from the right: the places of a number stay comparable.
  const size_t count = std::max(oldCells.size(), newCells.size());
  for (size_t i = 0; i < count; ++i) {
    const Cell* from = i < oldCells.size() ? &oldCells[oldCells.size() - 1 - i] : nullptr;
    const Cell* to = i < newCells.size() ? &newCells[newCells.size() - 1 - i] : nullptr;
    if (from && to && from->text == to->text) {
      drawCell(painter, {to->text, from->x + (to->x - from->x) * progress, to->width}, face, baseline);
      continue;
    }
    if (from) {
      painter.setOpacity(opacity * (1 - progress));
      drawCell(painter, *from, face, baseline - up * travel * progress);
    }
    if (to) {
      painter.setOpacity(opacity * progress);
      drawCell(painter, *to, face, baseline + up * travel * (1 - progress));
    }
    painter.setOpacity(opacity);
  }
}

View Text(std::string text) { return View(std::make_shared<TextElement>(std::move(text))); }

}  // namespace tarnwick::ui
