#include "ui/engine/Drawing.h"

#include <algorithm>

namespace tarnwick::ui {

QColor toQt(Color color) {
  const auto unit = [](double v) { return float(std::clamp(v, 0.0, 1.0)); };
  return QColor::fromRgbF(unit(color.red), unit(color.green), unit(color.blue), unit(color.alpha));
}

QRectF toQt(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

Rect fromQt(const QRectF& rect) { return {rect.x(), rect.y(), rect.width(), rect.height()}; }

QPainterPath toQt(const Path& path) {
  const auto point = [](Point p) { return QPointF(p.x, p.y); };
  QPainterPath result;
  result.setFillRule(Qt::WindingFill);
  for (const Path::Element& element : path.elements()) {
    const Point* p = element.points;
    switch (element.verb) {
      case Path::Verb::move:
        result.moveTo(point(p[0]));
        break;
      case Path::Verb::line:
        result.lineTo(point(p[0]));
        break;
      case Path::Verb::quad:
        result.quadTo(point(p[0]), point(p[1]));
        break;
      case Path::Verb::cubic:
        result.cubicTo(point(p[0]), point(p[1]), point(p[2]));
        break;
      case Path::Verb::close:
        result.closeSubpath();
        break;
    }
  }
  return result;
}

QPainterPath outline(const Shape& shape, Size size) {
  return toQt(shape.outline(size, shape.animated, shape.fixed));
}

}  // namespace tarnwick::ui
