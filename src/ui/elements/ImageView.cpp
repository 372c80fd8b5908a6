#include <QImage>
#include <QPainter>
#include <algorithm>

#include "ui/View.h"
#include "ui/engine/Element.h"

namespace tarnwick::ui {
namespace {

class ImageElement : public Element {
 public:
  ImageElement(Image image, ContentMode mode) : image_(std::move(image)), mode_(mode) {}
  static constexpr ElementKind itsKind{"Image"};
  const ElementKind& kind() const override { return itsKind; }
  bool equals(const Element& other) const override {
    const auto& same = static_cast<const ImageElement&>(other);
    return same.image_ == image_ && same.mode_ == mode_;
  }
  bool affectsLayout(const Element&) const override { return false; }
  bool draws() const override { return true; }

  void draw(DrawContext& context) const override {
    const auto* before = as<ImageElement>(context.previous);
    if (!before || context.change >= 1) return drawPicture(context);
    // The old one stays whole beneath, so that nothing shines through half way.
    before->drawPicture(context);
    const double opacity = context.painter.opacity();
    context.painter.setOpacity(opacity * std::clamp(context.change, 0.0, 1.0));
    drawPicture(context);
    context.painter.setOpacity(opacity);
  }

 private:
  void drawPicture(DrawContext& context) const {
    const double w = context.size.width, h = context.size.height;
    if (image_.width <= 0 || image_.height <= 0 || !image_.pixels || w <= 0 || h <= 0) return;
    const double byWidth = w / image_.width, byHeight = h / image_.height;
    const double scale =
        mode_ == ContentMode::fill ? std::max(byWidth, byHeight) : std::min(byWidth, byHeight);
    const QImage& picture = scaledFor(scale * context.painter.deviceTransform().m11());
    const QRectF target(w / 2 - image_.width * scale / 2, h / 2 - image_.height * scale / 2,
        image_.width * scale, image_.height * scale);
    context.painter.save();
    context.painter.setClipRect(QRectF(0, 0, w, h), Qt::IntersectClip);
    context.painter.setRenderHint(QPainter::SmoothPixmapTransform);
    context.painter.drawImage(target, picture);
    context.painter.restore();
  }

  /// A copy that is at most twice as large as it is drawn: scaling a cover of thousands of pixels in each
  /// frame would cost more than all the rest, and look worse.
  const QImage& scaledFor(double scale) const {
    double wanted = 1;
    while (wanted / 2 > scale) wanted /= 2;
    if (reduced_.isNull() || wanted != reducedBy_) {
      const QImage whole(reinterpret_cast<const uchar*>(image_.pixels->data()), image_.width, image_.height,
          QImage::Format_ARGB32_Premultiplied);
      reduced_ =
          wanted == 1
              ? whole
              : whole.scaled(std::max(1, int(image_.width * wanted)),
                    std::max(1, int(image_.height * wanted)), Qt::IgnoreAspectRatio,
                    Qt::SmoothTransformation);
      reducedBy_ = wanted;
    }
    return reduced_;
  }

  Image image_;
  ContentMode mode_;
  mutable QImage reduced_;
  mutable double reducedBy_ = 0;
};

}  // namespace

View ImageView(Image image, ContentMode mode) {
  return View(std::make_shared<ImageElement>(std::move(image), mode));
}

}  // namespace tarnwick::ui
