#include "ui/elements/SpeakerOutline.h"

#include <QPolygonF>
#include <QTransform>

namespace tarnwick::ui {
namespace {

/// The grid and the thickness of lines of the font's designers.
constexpr double grid = 24, line = 2;

QPainterPath stroked(const QPainterPath& path, double width) {
  QPainterPathStroker stroker;
  stroker.setWidth(width);
  stroker.setCapStyle(Qt::FlatCap);
  return stroker.createStroke(path);
}

QPainterPath wave(int index) {
  constexpr double centerX = 8, centerY = grid / 2, first = 5.75, step = 3.4;
  constexpr double spread = 42;  // degrees to each side
  const double radius = first + step * index;
  const QRectF circle(centerX - radius, centerY - radius, 2 * radius, 2 * radius);
  QPainterPath arc;
  arc.arcMoveTo(circle, -spread);
  arc.arcTo(circle, -spread, 2 * spread);
  return stroked(arc, line);
}

QPainterPath speaker(int waves, bool muted) {
  QPainterPath outline;
  outline.addPolygon(QPolygonF({{2, 9}, {6, 9}, {11, 4}, {11, 20}, {6, 15}, {2, 15}}));
  outline.closeSubpath();
  for (int i = 0; i < waves; ++i) outline.addPath(wave(i));
  if (muted) {
    QPainterPath slash(QPointF(3, 3));
    slash.lineTo(21, 21);
    outline = outline.subtracted(stroked(slash, 2 * line)).united(stroked(slash, line));
  }
  return QTransform::fromScale(1 / grid, 1 / grid).map(outline);
}

}  // namespace

std::optional<QPainterPath> speakerOutline(std::string_view symbol) {
  if (symbol == "speaker.fill") return speaker(0, false);
  if (symbol == "speaker.wave.1.fill") return speaker(1, false);
  if (symbol == "speaker.wave.2.fill") return speaker(2, false);
  if (symbol == "speaker.wave.3.fill") return speaker(3, false);
  if (symbol == "speaker.slash.fill") return speaker(2, true);
  return std::nullopt;
}

}  // namespace tarnwick::ui
