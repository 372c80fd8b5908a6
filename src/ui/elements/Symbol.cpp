#include <QPainter>
#include <QRawFont>
#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "ui/View.h"
#include "ui/elements/SpeakerOutline.h"
#include "ui/elements/SymbolElement.h"
#include "ui/elements/SymbolTable.h"
#include "ui/engine/Drawing.h"
#include "ui/engine/Node.h"
#include "ui/paint/FontBook.h"

namespace tarnwick::ui {
namespace {

/// The glyphs stand in a square em with air around; at this many ems to a point they look as tall as the
/// capitals of the text beside them and a little more.
constexpr double emPerPoint = 1.32;

QPainterPath fontOutline(const SymbolGlyph& symbol) {
  constexpr double size = 1000;
  const QRawFont font = fontBook::symbols(size);
  const auto indexes = font.glyphIndexesForString(QString::fromUcs4(&symbol.codepoint, 1));
  if (indexes.isEmpty() || indexes[0] == 0) return {};
  // Centred by the em square, as the designers of the glyphs meant it.
  const QTransform aboutCenter =
      QTransform::fromTranslate(0.5, 0.5)
          .rotate(symbol.turn)
          .scale(symbol.scale / size, symbol.scale / size)
          .translate(-size / 2, -size / 2);
  return aboutCenter.map(font.pathForGlyph(indexes[0]).translated(0, size));
}

/// The symbol's outline at 1 em = 1 unit, its square from (0, 0) to (1, 1); empty for an unknown name.
const QPainterPath& outlineOf(const std::string& name) {
  static std::map<std::string, QPainterPath> outlines;
  const auto found = outlines.find(name);
  if (found != outlines.end()) return found->second;
  QPainterPath path;
  if (const auto speaker = speakerOutline(name)) {
    path = *speaker;
  } else if (const auto symbol = symbolGlyph(name)) {
    path = fontOutline(*symbol);
  }
  path.setFillRule(Qt::WindingFill);
  return outlines.emplace(name, path).first->second;
}

/// Once for each name.
void warnOfUnknown(const std::string& name) {
  static std::set<std::string> told;
  if (told.insert(name).second) qWarning("There is no symbol named %s", name.c_str());
}

double side(const Font& font) { return font.size * emPerPoint; }

}  // namespace

bool isSymbol(const std::string& name) { return !outlineOf(name).isEmpty(); }

std::vector<double> SymbolElement::animatedValues(const Environment& environment) const {
  const Color c = environment.foreground;
  return {c.red, c.green, c.blue, c.alpha};
}

Measured SymbolElement::measure(Node& node, Proposal) const {
  const double length = std::ceil(side(node.environment.font));
  return {{length, length}, std::round(length * 0.86)};
}

void SymbolElement::draw(DrawContext& context) const {
  const auto* before = as<SymbolElement>(context.previous);
  if (!before || context.change >= 1) return drawGlyph(context, 1, 1);
  const double progress = std::clamp(context.change, 0.0, 1.0);
  if (context.environment.contentTransition == ContentTransition::replace) {
    // The old one is gone by half time, then the new one grows.
    if (progress < 0.5) return before->drawGlyph(context, 1 - 0.9 * progress, 1 - 2 * progress);
    return drawGlyph(context, 0.55 + 0.9 * (progress - 0.5), 2 * progress - 1);
  }
  before->drawGlyph(context, 1, 1 - progress);
  drawGlyph(context, 1, progress);
}

void SymbolElement::drawGlyph(DrawContext& context, double scale, double opacity) const {
  if (!isSymbol(name_)) return warnOfUnknown(name_);
  const double length = side(context.environment.font) * scale;
  const std::vector<double>& c = context.values;
  QPainter& painter = context.painter;
  painter.save();
  painter.translate(context.size.width / 2 - length / 2, context.size.height / 2 - length / 2);
  painter.scale(length, length);
  painter.setOpacity(painter.opacity() * opacity);
  painter.fillPath(outlineOf(name_), toQt(Color{c[0], c[1], c[2], c[3]}));
  // The font has one weight; a heavier one is drawn with a little more ink around the edges.
  const int weight = int(context.environment.font.weight);
  if (weight >= int(Weight::bold)) {
    painter.strokePath(outlineOf(name_), QPen(toQt(Color{c[0], c[1], c[2], c[3]}), 0.03));
  }
  painter.restore();
}

View Symbol(std::string name) { return View(std::make_shared<SymbolElement>(std::move(name))); }

}  // namespace tarnwick::ui
