#include "ui/Painter.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/Blur.h"
#include "ui/Drawing.h"
#include "ui/Elements.h"
#include "ui/ShadowPatch.h"

namespace tarnwick::ui {
namespace {

/// Blurs run on a copy reduced until their standard deviation is about this many pixels.
constexpr double reducedSigma = 2.5;
constexpr double leastBlur = 0.1;

/// How many nodes below draw something; counting ends at two.
int drawing(const Node& node) {
  int count = node.element->draws() ? 1 : 0;
  for (const auto* list : {&node.leaving, &node.children}) {
    for (const auto& child : *list) {
      if (count >= 2) return count;
      if (child->visible) count += drawing(*child);
    }
  }
  return count;
}

void brighten(QImage& image, double amount) {
  const int add = int(std::round(amount * 255));
  for (int y = 0; y < image.height(); ++y) {
    auto* line = reinterpret_cast<uint32_t*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x) {
      const int a = int(line[x] >> 24);
      if (a == 0) continue;
      const auto channel = [&](int shift) {
        const int value = int(line[x] >> shift & 255) + add * a / 255;
        return uint32_t(std::clamp(value, 0, a)) << shift;
      };
      line[x] = uint32_t(a) << 24 | channel(16) | channel(8) | channel(0);
    }
  }
}

QPainterPath clipPath(const Node& node) {
  Shape shape = *node.attributes.clip;
  shape.animated = node.clip.presented();
  return outline(shape, node.presentedSize);
}

}  // namespace

void Painter::paint(Node& root, QImage& target, const Rect& area) {
  const QRect pixels = QRectF(area.x * ratio_, area.y * ratio_, area.width * ratio_, area.height * ratio_)
                           .toAlignedRect() & target.rect();
  if (pixels.isEmpty()) return;
  QPainter painter(&target);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
  painter.setClipRect(pixels);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(pixels, Qt::transparent);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  Surface surface{target, painter, QTransform::fromScale(ratio_, ratio_),
                  fromQt(QRectF(pixels.x() / ratio_, pixels.y() / ratio_, pixels.width() / ratio_,
                                pixels.height() / ratio_))};
  draw(root, surface, 1);
}

void Painter::draw(Node& node, Surface& surface, double opacity) {
  if (node.bounds.isEmpty() || !node.bounds.intersects(surface.clip)) return;
  const bool fades = node.opacity < 0.998;
  const bool grouped = node.blurRadius > leastBlur || node.brightening != 0 || node.attributes.clip ||
                       (fades && drawing(node) > 1);
  if (!grouped) node.group.reset();
  if (!node.attributes.shadows.empty()) drawShadows(node, surface, opacity * node.opacity);
  if (grouped) drawGroup(node, surface, opacity * node.opacity);
  else drawContent(node, surface, opacity * node.opacity);
}

void Painter::drawContent(Node& node, Surface& surface, double opacity) {
  QPainter& painter = surface.painter;
  if (node.element->draws() && node.ownBounds.intersects(surface.clip)) {
    painter.setTransform(node.transform * surface.toPixels);
    painter.setOpacity(opacity);
    static const std::vector<double> none;
    DrawContext context{painter,
                        node.presentedSize,
                        node.frame.size(),
                        node.environment,
                        node.values.presented().empty() ? none : node.values.presented(),
                        node.previous.get(),
                        node.change.presented().empty() ? 1 : node.change.presented()[0]};
    node.element->draw(context);
  }
  const bool scrolls = node.element->kind() == "ScrollView";
  if (scrolls) {
    painter.save();
    painter.setTransform(node.transform * surface.toPixels);
    painter.setClipRect(QRectF(0, 0, node.presentedSize.width, node.presentedSize.height), Qt::IntersectClip);
  }
  for (auto* list : {&node.leaving, &node.children}) {
    for (const auto& child : *list) draw(*child, surface, opacity);
  }
  if (scrolls) painter.restore();
}

/// The content of a node, in its own coordinates and without its effects.
QImage Painter::render(Node& node, const Rect& rect, double scale, double blurRadius) {
  QImage image(std::max(1, int(std::ceil(rect.width * scale))), std::max(1, int(std::ceil(rect.height * scale))),
               QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  {
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    QTransform toPixels = node.transform.inverted();
    toPixels *= QTransform::fromTranslate(-rect.x, -rect.y);
    toPixels *= QTransform::fromScale(scale, scale);
    Surface surface{image, painter, toPixels, fromQt(node.transform.mapRect(toQt(rect)))};
    drawContent(node, surface, 1);
    if (node.attributes.clip) {
      painter.setTransform(QTransform::fromTranslate(-rect.x, -rect.y) * QTransform::fromScale(scale, scale));
      painter.setOpacity(1);
      painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
      // A path that fills everything outside itself with nothing needs a picture of its own.
      QImage mask(image.size(), QImage::Format_Alpha8);
      mask.fill(0);
      QPainter masking(&mask);
      masking.setRenderHint(QPainter::Antialiasing);
      masking.setTransform(painter.transform());
      masking.fillPath(clipPath(node), Qt::black);
      masking.end();
      painter.resetTransform();
      painter.drawImage(0, 0, mask);
    }
  }
  if (blurRadius > leastBlur) blur(image, blurRadius * scale);
  if (node.brightening != 0) brighten(image, node.brightening);
  return image;
}

void Painter::drawGroup(Node& node, Surface& surface, double opacity) {
  const double outerScale = std::sqrt(std::abs(surface.toPixels.determinant()));
  const QTransform toScene = node.transform;
  const double reach = 3 * node.blurRadius;
  // In the node's own coordinates: all of it where it will be used again, else what has to be drawn.
  const bool reusable = !node.attributes.clip && node.brightening == 0 &&
                        (node.blurRadius > leastBlur || node.opacity < 0.998);
  Rect wanted = fromQt(toScene.inverted().mapRect(toQt(node.contentBounds)));
  if (!reusable) {
    const Rect seen = fromQt(toScene.inverted().mapRect(toQt(surface.clip)));
    const double left = std::max(wanted.x, seen.x), top = std::max(wanted.y, seen.y);
    wanted = {left, top, std::min(wanted.right(), seen.right()) - left,
              std::min(wanted.bottom(), seen.bottom()) - top};
    if (wanted.isEmpty()) return;
  }
  double scale = outerScale;
  while (node.blurRadius * scale > reducedSigma * 2) scale /= 2;
  const double step = 1 / scale;
  const auto down = [&](double v) { return std::floor(v / step) * step; };
  const auto up = [&](double v) { return std::ceil(v / step) * step; };
  wanted = wanted.grownBy(reach, reach);
  const Rect rect{down(wanted.x), down(wanted.y), up(wanted.right()) - down(wanted.x),
                  up(wanted.bottom()) - down(wanted.y)};

  const auto put = [&](const QImage& image) {
    QPainter& painter = surface.painter;
    painter.setTransform(QTransform::fromScale(1 / scale, 1 / scale) * QTransform::fromTranslate(rect.x, rect.y) *
                         toScene * surface.toPixels);
    painter.setOpacity(opacity);
    painter.drawImage(QPointF(0, 0), image);
  };
  if (!reusable) {
    put(render(node, rect, scale, 0));
    return;
  }
  // Kept is the sharp content; what moves on top of it (opacity, place, blur) costs no drawing of views.
  if (!node.group || node.contentChanged || node.group->scale != scale || !(node.group->rect == rect)) {
    node.group = std::make_unique<Node::Group>(Node::Group{render(node, rect, scale, 0), rect, scale});
    node.contentChanged = false;
  }
  if (node.blurRadius <= leastBlur) {
    put(node.group->image);
    return;
  }
  QImage blurred = node.group->image;
  blur(blurred, node.blurRadius * scale);
  put(blurred);
}

void Painter::drawShadows(Node& node, Surface& surface, double opacity) {
  if (opacity <= 0.002) return;
  // The outline: what the node is clipped to, or the one shape that it consists of.
  const Node* shaped = &node;
  std::optional<Shape> shape;
  if (node.attributes.clip) {
    shape = *node.attributes.clip;
    shape->animated = node.clip.presented();
  } else {
    while (!shaped->element->shape() && shaped->children.size() == 1) shaped = shaped->onlyChild();
    if (const ShapeElement* element = shaped->element->shape()) shape = element->presented(shaped->values.presented());
  }
  const QTransform toPixels = shaped->transform * surface.toPixels;
  const double scale = std::sqrt(std::abs(toPixels.determinant()));
  const QRect clip = surface.toPixels.mapRect(toQt(surface.clip)).toAlignedRect();
  for (auto shadow = node.attributes.shadows.rbegin(); shadow != node.attributes.shadows.rend(); ++shadow) {
    Color color = shadow->color.opacity(opacity);
    if (color.alpha <= 0.002) continue;
    if (shape) {
      const auto patch = ShadowPatch::of(*shape, shaped->presentedSize, shadow->radius, scale);
      const QPointF corner = toPixels.map(QPointF(0, 0)) + QPointF(shadow->offset.x, shadow->offset.y) * scale;
      const QSizeF size(shaped->presentedSize.width * scale, shaped->presentedSize.height * scale);
      patch->draw(surface.image, corner, size, color, clip);
      continue;
    }
    // Anything else casts the shadow of its own picture.
    const double reach = 3 * shadow->radius;
    const Rect rect = fromQt(node.transform.inverted().mapRect(toQt(node.contentBounds))).grownBy(reach, reach);
    double reduced = scale;
    while (shadow->radius * reduced > reducedSigma * 2) reduced /= 2;
    QImage picture = render(node, rect, reduced, shadow->radius);
    QPainter tint(&picture);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(picture.rect(), toQt(shadow->color));
    tint.end();
    surface.painter.setTransform(QTransform::fromScale(1 / reduced, 1 / reduced) *
                                 QTransform::fromTranslate(rect.x + shadow->offset.x, rect.y + shadow->offset.y) *
                                 node.transform * surface.toPixels);
    surface.painter.setOpacity(opacity);
    surface.painter.drawImage(QPointF(0, 0), picture);
  }
}

}  // namespace tarnwick::ui
