#include "ui/Shape.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/View.h"
#include "ui/elements/DashedStroke.h"
#include "ui/elements/ShapeElement.h"
#include "ui/engine/Drawing.h"
#include "ui/paint/RadialGradient.h"

namespace tarnwick::ui {
namespace {

Path rectangle(Size size, const std::vector<double>&, const std::vector<double>&) {
  Path path;
  path.addRect({0, 0, size.width, size.height});
  return path;
}

/// How far a corner of continuous curvature reaches along the edge, in radii.
constexpr double continuousReach = 1.28;

/// One corner of continuous curvature: the curve begins a little further out than a circular arc would and
/// bends more gently. Where there is no room for that it becomes the arc.
Path roundedRectangle(Size size, const std::vector<double>& animated, const std::vector<double>&) {
  const double w = size.width, h = size.height;
  const double r = std::clamp(animated[0], 0.0, std::min(w, h) / 2);
  Path path;
  if (r <= 0) {
    path.addRect({0, 0, w, h});
    return path;
  }
  // Reach of the corner along the edge, and where its control points lie, as fractions of the reach.
  const double room = std::min(w, h) / 2 / r;
  const double reach = r * std::min(continuousReach, room);
  const double smooth = (reach / r - 1) / (continuousReach - 1);
  const double c = reach * (1 - (0.5522847498 + 0.09 * smooth));
  path.moveTo({reach, 0});
  path.lineTo({w - reach, 0});
  path.cubicTo({w - c, 0}, {w, c}, {w, reach});
  path.lineTo({w, h - reach});
  path.cubicTo({w, h - c}, {w - c, h}, {w - reach, h});
  path.lineTo({reach, h});
  path.cubicTo({c, h}, {0, h - c}, {0, h - reach});
  path.lineTo({0, reach});
  path.cubicTo({0, c}, {c, 0}, {reach, 0});
  path.close();
  return path;
}

Path capsule(Size size, const std::vector<double>&, const std::vector<double>&) {
  return roundedRectangle(size, {std::min(size.width, size.height) / 2}, {});
}

Path circle(Size size, const std::vector<double>&, const std::vector<double>&) {
  const double side = std::min(size.width, size.height);
  Path path;
  path.addEllipse({(size.width - side) / 2, (size.height - side) / 2, side, side});
  return path;
}

constexpr size_t numbersPerColor = 4;

void append(std::vector<double>& numbers, Color color) {
  numbers.insert(numbers.end(), {color.red, color.green, color.blue, color.alpha});
}

Color colorAt(const std::vector<double>& numbers, size_t index) {
  const double* n = numbers.data() + index * numbersPerColor;
  return {n[0], n[1], n[2], n[3]};
}

QBrush brush(const Paint& paint, const std::vector<double>& values, Size size, const QPainter& painter) {
  if (paint.kind == Paint::Kind::color) return toQt(colorAt(values, 0));
  const auto place = [&](UnitPoint p) { return QPointF(p.x * size.width, p.y * size.height); };
  std::vector<std::pair<double, QColor>> stops;
  for (size_t i = 0; i < paint.stops.size(); ++i) {
    stops.emplace_back(paint.stops[i].position, toQt(colorAt(values, i)));
  }
  if (paint.kind == Paint::Kind::linear) {
    QLinearGradient gradient(place(paint.start), place(paint.end));
    for (const auto& [position, color] : stops) gradient.setColorAt(position, color);
    return gradient;
  }
  const QTransform toPixels = painter.deviceTransform();
  QRectF seen(0, 0, size.width, size.height);
  if (painter.hasClipping()) seen &= painter.clipBoundingRect();
  const QRect pixels = toPixels.mapRect(seen).toAlignedRect() & painter.viewport();
  return RadialGradient{place(paint.start), paint.radius, std::move(stops)}.brush(toPixels, pixels);
}

/// The part of a path between two fractions of its length.
QPainterPath trimmed(const QPainterPath& path, double from, double to) {
  constexpr int steps = 96;
  QPainterPath part;
  const double a = std::clamp(from, 0.0, 1.0), b = std::clamp(to, 0.0, 1.0);
  if (b <= a) return part;
  part.moveTo(path.pointAtPercent(a));
  for (int i = 1; i <= steps; ++i) part.lineTo(path.pointAtPercent(a + (b - a) * i / steps));
  return part;
}

/// Fills the shape. Between its corners it is a rectangle, which is filled several times as fast.
void fill(QPainter& painter, const Shape& shape, Size size, const QBrush& brush) {
  const QPainterPath path = ui::outline(shape, size);
  const double corner = shape.cornerExtent();
  const QTransform& toPixels = painter.deviceTransform();
  // In rows of pixels.
  const double top = std::ceil(toPixels.map(QPointF(0, corner)).y());
  const double bottom = std::floor(toPixels.map(QPointF(0, size.height - corner)).y());
  constexpr double worthIt = 16;
  if (corner <= 0 || toPixels.type() > QTransform::TxScale || bottom - top < worthIt)
    return painter.fillPath(path, brush);
  const double from = (top - toPixels.dy()) / toPixels.m22(), to = (bottom - toPixels.dy()) / toPixels.m22();
  painter.fillRect(QRectF(0, from, size.width, to - from), brush);
  for (const QRectF& part :
      {QRectF(-1, -1, size.width + 2, from + 1), QRectF(-1, to, size.width + 2, size.height - to + 1)}) {
    painter.save();
    painter.setClipRect(part, Qt::IntersectClip);
    painter.fillPath(path, brush);
    painter.restore();
  }
}

}  // namespace

Shape Rectangle() {
  return {.outline = rectangle, .extent = [](const auto&, const auto&) { return 0.0; }};
}
Shape RoundedRectangle(double radius) {
  return {.outline = roundedRectangle, .animated = {radius}, .extent = [](const auto& animated, const auto&) {
            return animated[0] * continuousReach;
          }};
}
Shape Capsule() { return {.outline = capsule}; }
Shape Circle() { return {.outline = circle}; }

View Shape::fill(Paint paint) const {
  return View(std::make_shared<ShapeElement>(*this, std::move(paint), std::nullopt));
}
View Shape::stroke(Paint paint, StrokeStyle style) const {
  return View(std::make_shared<ShapeElement>(*this, std::move(paint), std::move(style)));
}

bool ShapeElement::equals(const Element& other) const {
  const auto& same = static_cast<const ShapeElement&>(other);
  return same.shape_ == shape_ && same.paint_ == paint_ && same.stroke_ == stroke_;
}

// Colours first, then the shape's own numbers, then those of the stroke.
std::vector<double> ShapeElement::animatedValues(const Environment&) const {
  std::vector<double> values;
  for (const Paint::Stop& stop : paint_.stops) append(values, stop.color);
  values.insert(values.end(), shape_.animated.begin(), shape_.animated.end());
  if (stroke_) values.insert(values.end(), {stroke_->dashPhase, stroke_->trimFrom, stroke_->trimTo});
  return values;
}

Shape ShapeElement::presented(const std::vector<double>& values) const {
  Shape shape = shape_;
  const auto first = values.begin() + std::ptrdiff_t(paint_.stops.size() * numbersPerColor);
  shape.animated.assign(first, first + std::ptrdiff_t(shape_.animated.size()));
  return shape;
}

std::optional<Shape> ShapeElement::outline(const std::vector<double>& values) const {
  return stroke_ ? std::nullopt : std::optional(presented(values));
}

bool ShapeElement::isOpaque(const std::vector<double>& values) const {
  return !stroke_ && paint_.kind == Paint::Kind::color && shape_.cornerExtent() == 0 &&
         colorAt(values, 0).alpha >= 1;
}

void ShapeElement::draw(DrawContext& context) const {
  const std::vector<double>& values = context.values;
  const Shape shape = presented(values);
  QPainter& painter = context.painter;
  const QBrush paint = brush(paint_, values, context.size, painter);
  if (!stroke_) {
    fill(painter, shape, context.size, paint);
    return;
  }
  const double width = stroke_->width;
  const double phase = values[values.size() - 3], from = values[values.size() - 2], to = values.back();
  painter.save();
  Size size = context.size;
  if (stroke_->inside) {
    size = {std::max(0.0, size.width - width), std::max(0.0, size.height - width)};
    painter.translate(width / 2, width / 2);
  }
  QPainterPath path = ui::outline(shape, size);
  if (from > 0 || to < 1) path = trimmed(path, from, to);
  if (stroke_->dash.empty())
    painter.strokePath(path, QPen(paint, width, Qt::SolidLine, Qt::FlatCap));
  else
    strokeDashed(painter, path, paint, width, stroke_->dash, phase);
  painter.restore();
}

}  // namespace tarnwick::ui
