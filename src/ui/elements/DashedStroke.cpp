#include "ui/elements/DashedStroke.h"

#include <cmath>
#include <numeric>

namespace tarnwick::ui {
namespace {

/// Curves are taken for lines that are so many times shorter than at their own size.
constexpr double fineness = 2;

void drawDash(QPainter& painter, const QPolygonF& dash, const QBrush& brush, double width) {
  const QPointF a = dash.first(), b = dash.last();
  const bool isUpright = a.x() == b.x();
  if (dash.size() == 2 && (isUpright || a.y() == b.y())) {
    const double around = width / 2;
    const QRectF line = QRectF(a, b).normalized();
    painter.fillRect(
        isUpright ? line.adjusted(-around, 0, around, 0) : line.adjusted(0, -around, 0, around), brush);
    return;
  }
  QPainterPath path;
  path.addPolygon(dash);
  painter.strokePath(path, QPen(brush, width, Qt::SolidLine, Qt::FlatCap));
}

}  // namespace

void strokeDashed(QPainter& painter, const QPainterPath& path, const QBrush& brush, double width,
    const std::vector<double>& pattern, double phase) {
  const double period = std::accumulate(pattern.begin(), pattern.end(), 0.0);
  if (period <= 0) return;
  for (const QPolygonF& fine : path.toSubpathPolygons(QTransform::fromScale(fineness, fineness))) {
    const QPolygonF line = QTransform::fromScale(1 / fineness, 1 / fineness).map(fine);
    double into = std::fmod(std::fmod(phase, period) + period, period);
    size_t part = 0;
    while (into >= pattern[part]) into -= pattern[part++];
    double left = pattern[part] - into;
    const auto isDash = [&] { return part % 2 == 0; };
    QPolygonF dash;
    if (isDash()) dash << line.first();
    for (qsizetype i = 1; i < line.size(); ++i) {
      const QLineF segment(line[i - 1], line[i]);
      const double length = segment.length();
      double at = 0;
      while (length - at > left) {
        at += left;
        const QPointF point = segment.pointAt(at / length);
        if (isDash()) drawDash(painter, dash << point, brush, width);
        part = (part + 1) % pattern.size();
        left = pattern[part];
        dash.clear();
        if (isDash()) dash << point;
      }
      left -= length - at;
      if (isDash()) dash << line[i];
    }
    if (dash.size() > 1) drawDash(painter, dash, brush, width);
  }
}

}  // namespace tarnwick::ui
