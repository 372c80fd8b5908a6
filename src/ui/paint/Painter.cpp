#include "ui/paint/Painter.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/engine/Drawing.h"
#include "ui/paint/Blur.h"
#include "ui/paint/ShadowPatch.h"

namespace tarnwick::ui {
namespace {

/// Blurs run at a scale halved until their standard deviation is at most this many pixels.
constexpr double reducedSigma = 0.95;
/// What enlarging a reduced picture blurs by itself, as a variance in reduced pixels.
constexpr double enlargingVariance = 0.11;
/// In pixels: less cannot be seen.
constexpr double leastBlur = 0.3;

constexpr Color focusColor{0.35, 0.62, 1};

/// The scale at which something is drawn that will be blurred by `radius` points, and by how many of its
/// pixels that then has to be done.
struct Reduction {
  double scale, sigma;
  Reduction(double fullScale, double radius) : scale(fullScale) {
    while (radius * scale > reducedSigma) scale /= 2;
    const double own = scale < fullScale ? enlargingVariance : 0;
    sigma = std::sqrt(std::max(0.0, radius * radius * scale * scale - own));
  }
};

/// How many nodes below draw something; counting ends at two.
int drawing(const Node& node) {
  int count = node.element->drawsOverItself() ? 2 : node.element->draws() ? 1 : 0;
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

/// Whether everything that a clipped node covers is hidden behind an opaque area at its very back.
bool hasOpaqueBack(const Node& node, const Node& clipped) {
  if (node.opacity < 1 || node.blurRadius > 0) return false;
  if (node.element->isOpaque(node.values.presented())) {
    const Rect& back = node.ownBounds;
    const Rect& front = clipped.contentBounds;
    constexpr double slack = 0.01;
    return back.x <= front.x + slack && back.y <= front.y + slack && back.right() >= front.right() - slack &&
           back.bottom() >= front.bottom() - slack;
  }
  const Node* back = node.leaving.empty() ? node.firstChild() : nullptr;
  return !node.element->draws() && back && hasOpaqueBack(*back, clipped);
}

Shape presentedClip(const Node& node) {
  Shape shape = *node.attributes.clip;
  shape.animated = node.clip.presented();
  return shape;
}

}  // namespace

void paint(Scene& scene, QImage& target, const Rect& area, Point origin) {
  Painter(scene.pixelRatio()).paint(scene.root(), target, area, origin);
}

QImage picture(Scene& scene) {
  const double ratio = scene.pixelRatio();
  const Size size = scene.size();
  QImage image(int(std::lround(size.width * ratio)), int(std::lround(size.height * ratio)),
      QImage::Format_ARGB32_Premultiplied);
  paint(scene, image, {0, 0, size.width, size.height});
  return image;
}

void Painter::paint(Node& root, QImage& target, const Rect& area, Point origin) {
  const QTransform toPixels =
      QTransform::fromScale(ratio_, ratio_) * QTransform::fromTranslate(origin.x, origin.y);
  const QRect pixels = toPixels.mapRect(toQt(area)).toAlignedRect() & target.rect();
  if (pixels.isEmpty()) return;
  QPainter painter(&target);
  painter.setRenderHints(
      QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
  painter.setClipRect(pixels);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(pixels, Qt::transparent);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  Surface surface{target, painter, toPixels, fromQt(toPixels.inverted().mapRect(QRectF(pixels)))};
  draw(root, surface, 1);
}

QImage pictureOf(Node& node, double pixelRatio) {
  const Size size = node.presentedSize;
  QImage picture = Painter(pixelRatio).render(node, {0, 0, size.width, size.height}, pixelRatio);
  picture.setDevicePixelRatio(pixelRatio);
  return picture;
}

void Painter::draw(Node& node, Surface& surface, double opacity) {
  if (node.bounds.isEmpty() || !node.bounds.intersects(surface.clip)) return;
  opacity *= node.opacity;
  if (node.attributes.clip) return drawClipped(node, surface, opacity);
  const bool fades = node.opacity < 0.998;
  const bool grouped = isBlurred(node) || node.brightening != 0 || (fades && drawing(node) > 1);
  if (!grouped) node.group.reset();
  drawShadows(node, surface, opacity, false);
  if (grouped)
    drawGroup(node, surface, opacity);
  else
    drawContent(node, surface, opacity);
}

bool Painter::isBlurred(const Node& node) const { return node.blurRadius * ratio_ > leastBlur; }

void Painter::drawContent(Node& node, Surface& surface, double opacity) {
  QPainter& painter = surface.painter;
  if (node.element->draws() && node.ownBounds.intersects(surface.clip)) {
    painter.setTransform(node.transform * surface.toPixels);
    painter.setOpacity(opacity);
    static const std::vector<double> none;
    DrawContext context{painter, node.presentedSize, node.frame.size(), node.previousSize, node.environment,
        node.values.presented().empty() ? none : node.values.presented(), node.previous.get(),
        node.change.presented().empty() ? 1 : node.change.presented()[0]};
    node.element->draw(context);
    surface.blank = false;
  }
  if (node.element->clips()) {
    const QRectF box(0, 0, node.presentedSize.width, node.presentedSize.height);
    painter.save();
    painter.setTransform(node.transform * surface.toPixels);
    painter.setClipRect(box, Qt::IntersectClip);
    Surface inside{
        surface.image, painter, surface.toPixels, fromQt(node.transform.mapRect(box) & toQt(surface.clip))};
    drawInside(node, inside, opacity);
    surface.blank &= inside.blank;
    painter.restore();
  } else {
    drawInside(node, surface, opacity);
  }
  if (node.hasFocusRing) drawFocusRing(node, surface, opacity);
}

/// Inside the view's edges, so that nothing around it can cut the ring.
void Painter::drawFocusRing(const Node& node, Surface& surface, double opacity) {
  constexpr double width = 2;
  const Size size{
      std::max(0.0, node.presentedSize.width - width), std::max(0.0, node.presentedSize.height - width)};
  const Shape shape =
      node.attributes.interaction && node.attributes.interaction->hitShape
          ? *node.attributes.interaction->hitShape
          : RoundedRectangle(6);
  QPainter& painter = surface.painter;
  painter.setTransform(QTransform::fromTranslate(width / 2, width / 2) * node.transform * surface.toPixels);
  painter.setOpacity(opacity);
  painter.strokePath(outline(shape, size), QPen(toQt(focusColor), width));
  surface.blank = false;
}

void Painter::drawInside(Node& node, Surface& surface, double opacity) {
  for (auto* list : {&node.leaving, &node.children}) {
    for (const auto& child : *list) draw(*child, surface, opacity);
  }
}

/// Draws a clipped node. On what is still blank it needs no picture of its own: its content is drawn, its
/// corners are cut off, and the shadows are put underneath.
void Painter::drawClipped(Node& node, Surface& surface, double opacity) {
  const QTransform toPixels = node.transform * surface.toPixels;
  const bool direct =
      surface.blank && opacity >= 0.998 && !isBlurred(node) && node.brightening == 0 &&
      toPixels.type() <= QTransform::TxScale;
  if (!direct) {
    drawShadows(node, surface, opacity, false);
    return drawGroup(node, surface, opacity);
  }
  drawInsideClip(node, surface);
  drawShadows(node, surface, 1, true);
}

/// Draws the content of a clipped node and cuts off its corners, with whatever has been drawn there before.
void Painter::drawInsideClip(Node& node, Surface& surface) {
  const QTransform toPixels = node.transform * surface.toPixels;
  const QRect box =
      toPixels.mapRect(QRectF(0, 0, node.presentedSize.width, node.presentedSize.height)).toAlignedRect();
  QPainter& painter = surface.painter;
  painter.save();
  painter.resetTransform();
  painter.setClipRect(box, Qt::IntersectClip);
  Surface inside{surface.image, painter, surface.toPixels,
      fromQt(surface.toPixels.inverted().mapRect(QRectF(box)) & toQt(surface.clip))};
  drawContent(node, inside, 1);
  cutCorners(node, painter, toPixels);
  painter.restore();
  surface.blank = false;
}

/// Cuts off what lies outside the clip of `node`. Where its edges are straight there is nothing to cut.
void Painter::cutCorners(const Node& node, QPainter& painter, const QTransform& toPixels) {
  const Shape shape = presentedClip(node);
  const QRectF box = toPixels.mapRect(QRectF(0, 0, node.presentedSize.width, node.presentedSize.height));
  const double corner = shape.cornerExtent(), strip = corner * toPixels.m11() + 1;
  QPainterPath outside = toPixels.map(outline(shape, node.presentedSize));
  outside.setFillRule(Qt::OddEvenFill);
  outside.addRect(box.adjusted(-2, -2, 2, 2));
  painter.save();
  painter.resetTransform();
  painter.setOpacity(1);
  // Nothing as the source takes away by coverage, as "destination out" would, but on the engine's fast path.
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  if (corner < 0 || 2 * strip >= box.width()) {
    painter.fillPath(outside, Qt::transparent);
  } else {
    const QRect whole = box.toAlignedRect();
    QRect left = whole, right = whole;
    left.setRight(int(std::ceil(box.left() + strip)) - 1);
    right.setLeft(int(std::floor(box.right() - strip)));
    for (const QRect& part : {left, right}) {
      painter.save();
      painter.setClipRect(part, Qt::IntersectClip);
      painter.fillPath(outside, Qt::transparent);
      painter.restore();
    }
  }
  painter.restore();
}

QImage Painter::render(Node& node, const Rect& rect, double scale) {
  QImage image(std::max(1, int(std::ceil(rect.width * scale - 1e-6))),
      std::max(1, int(std::ceil(rect.height * scale - 1e-6))), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHints(
      QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
  const QTransform toPixels =
      QTransform::fromTranslate(-rect.x, -rect.y) * QTransform::fromScale(scale, scale);
  Surface surface{
      image, painter, node.transform.inverted() * toPixels, fromQt(node.transform.mapRect(toQt(rect)))};
  node.attributes.clip ? drawInsideClip(node, surface) : drawContent(node, surface, 1);
  painter.end();
  if (node.brightening != 0) brighten(image, node.brightening);
  return image;
}

void Painter::drawGroup(Node& node, Surface& surface, double opacity) {
  const QTransform& toScene = node.transform;
  const bool blurs = isBlurred(node);
  // What will be blurred need not be drawn sharp first.
  const double fullScale = std::sqrt(std::abs(surface.toPixels.determinant()));
  const auto [scale, sigma] = Reduction(fullScale, blurs ? node.blurRadius : 0);
  // Room for any blur at this scale to spread, so that the picture can be used again while the blur goes.
  const double room = blurs ? std::ceil(3 * reducedSigma) / scale : 0;

  // In the node's own coordinates: all of it where it will be used again, else what has to be drawn.
  const bool reusable = !node.attributes.clip && node.brightening == 0 && (blurs || node.opacity < 0.998);
  Rect wanted = fromQt(toScene.inverted().mapRect(toQt(node.contentBounds))).grownBy(room, room);
  if (!reusable) {
    const Rect seen = fromQt(toScene.inverted().mapRect(toQt(surface.clip))).grownBy(room, room);
    const double left = std::max(wanted.x, seen.x), top = std::max(wanted.y, seen.y);
    wanted = {left, top, std::min(wanted.right(), seen.right()) - left,
        std::min(wanted.bottom(), seen.bottom()) - top};
    if (wanted.isEmpty()) return;
  }
  const auto down = [&](double v) { return std::floor(v * scale) / scale; };
  const auto up = [&](double v) { return std::ceil(v * scale) / scale; };
  const Rect rect{down(wanted.x), down(wanted.y), up(wanted.right()) - down(wanted.x),
      up(wanted.bottom()) - down(wanted.y)};

  // Kept is what is not blurred yet; what moves on top of it (opacity, place, blur) costs no drawing of
  // views.
  QImage picture;
  if (!reusable) {
    picture = render(node, rect, scale);
  } else {
    if (!node.group || node.group->scale != scale || !(node.group->rect == rect)) {
      node.group = std::make_unique<Node::Group>(Node::Group{render(node, rect, scale), rect, scale});
    }
    picture = node.group->image;
  }
  if (sigma > 0) blurSlightly(picture, sigma);

  surface.blank = false;
  QPainter& painter = surface.painter;
  const QTransform place =
      QTransform::fromScale(1 / scale, 1 / scale) * QTransform::fromTranslate(rect.x, rect.y) * toScene *
      surface.toPixels;
  painter.setOpacity(opacity);
  if (std::abs(place.m11() - 1) < 1e-6 && std::abs(place.m22() - 1) < 1e-6 && place.m12() == 0) {
    // Whole pixels: as crisp as drawn directly, and a plain copy.
    painter.resetTransform();
    painter.drawImage(QPoint(int(std::round(place.dx())), int(std::round(place.dy()))), picture);
  } else {
    painter.setTransform(place);
    painter.drawImage(QPointF(0, 0), picture);
  }
}

/// Draws the shadows before what casts them or, where that has been drawn onto nothing, `beneath` it.
void Painter::drawShadows(Node& node, Surface& surface, double opacity, bool beneath) {
  if (node.attributes.shadows.empty() || opacity <= 0.002) return;
  // The outline: what the node is clipped to, or the one shape that it consists of.
  const Node* shaped = &node;
  std::optional<Shape> shape;
  if (node.attributes.clip) {
    shape = presentedClip(node);
  } else {
    shape = shaped->element->outline(shaped->values.presented());
    while (!shape && shaped->children.size() == 1) {
      shaped = shaped->firstChild();
      shape = shaped->element->outline(shaped->values.presented());
    }
  }
  const QTransform toPixels = shaped->transform * surface.toPixels;
  const double scale = std::sqrt(std::abs(toPixels.determinant()));
  // Whole pixels: rounding errors must not reach beyond what is being painted.
  constexpr double noise = 1e-3;
  const QRect clip =
      surface.toPixels.mapRect(toQt(surface.clip)).adjusted(noise, noise, -noise, -noise).toAlignedRect();
  QRect hidden;
  if (node.attributes.clip && shape->cornerExtent() >= 0 && opacity >= 0.998 && hasOpaqueBack(node, node)) {
    const double corner = shape->cornerExtent();
    const QRectF middle(corner, 0, node.presentedSize.width - 2 * corner, node.presentedSize.height);
    hidden = toPixels.mapRect(middle).toAlignedRect().adjusted(1, 1, -1, -1);
  }
  std::vector<Attributes::Shadow> shadows = shadowsOf(node.shadows.presented());
  if (!beneath) std::ranges::reverse(shadows);  // the first one is the nearest
  for (const Attributes::Shadow& shadow : shadows) {
    const Color color = shadow.color.opacity(opacity);
    if (color.alpha <= 0.002) continue;
    surface.blank = false;
    if (shape) {
      const auto patch = ShadowPatch::of(*shape, shaped->presentedSize, shadow.radius, scale);
      const QPointF corner = toPixels.map(QPointF(0, 0)) + QPointF(shadow.offset.x, shadow.offset.y) * scale;
      const QSizeF size(shaped->presentedSize.width * scale, shaped->presentedSize.height * scale);
      patch->draw(surface.image, corner, size, color, clip, hidden, beneath);
      continue;
    }
    // Anything else casts the shadow of its own picture.
    const auto [reduced, sigma] = Reduction(scale, shadow.radius);
    const double reach = 3 * shadow.radius;
    const Rect rect =
        fromQt(node.transform.inverted().mapRect(toQt(node.contentBounds))).grownBy(reach, reach);
    auto& cast = node.castShadow;
    if (!cast || cast->scale != reduced || !(cast->rect == rect) || !(cast->color == shadow.color)) {
      QImage picture = render(node, rect, reduced);
      blurSlightly(picture, sigma);
      QPainter tint(&picture);
      tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
      tint.fillRect(picture.rect(), toQt(shadow.color));
      tint.end();
      cast = std::make_unique<Node::CastShadow>(Node::CastShadow{{picture, rect, reduced}, shadow.color});
    }
    surface.painter.setTransform(
        QTransform::fromScale(1 / reduced, 1 / reduced) *
        QTransform::fromTranslate(rect.x + shadow.offset.x, rect.y + shadow.offset.y) * node.transform *
        surface.toPixels);
    surface.painter.setOpacity(opacity);
    surface.painter.drawImage(QPointF(0, 0), cast->image);
  }
}

}  // namespace tarnwick::ui
