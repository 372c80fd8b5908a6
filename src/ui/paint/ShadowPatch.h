#pragma once
#include <QImage>
#include <QPointF>
#include <QRect>
#include <memory>

#include "ui/Shape.h"
#include "ui/paint/Blur.h"

namespace tarnwick::ui {

/// The blurred silhouette of a shape, kept small: it is made on a reduced copy, and where the shape has
/// straight edges only its corners are kept and the middle is stretched.
class ShadowPatch {
 public:
  /// The shadow of `shape` in a box of `size` points, blurred by `radius` points (standard deviation), for a
  /// surface of `scale` pixels a point. The last few are kept.
  static std::shared_ptr<const ShadowPatch> of(const Shape& shape, Size size, double radius, double scale);

  /// Draws it in `color` onto `target` (premultiplied ARGB), for a box whose top left corner is at `corner`
  /// and whose size is `size`, all in pixels; over what is there or `beneath` it; only inside `clip`, and not
  /// inside `hidden`, which something opaque covers.
  void draw(QImage& target, QPointF corner, QSizeF size, Color color, const QRect& clip, const QRect& hidden,
      bool beneath) const;

 private:
  /// For each pixel of a line: the two samples that it lies between, and how far it is to the second, 0…256.
  struct Sample {
    int index;
    int fraction;
  };
  std::vector<Sample> samples(double start, double length, int from, int count, bool horizontal) const;
  std::vector<uint16_t> widened(int row, const std::vector<Sample>& columns) const;

  AlphaMap map_;
  /// Pixels of the target a pixel of the map.
  double reduction_ = 1;
  /// How far the blur reaches beyond the box, in pixels of the target.
  double reach_ = 0;
  /// The box in the map, in pixels of the target, and whether it may be stretched to another.
  QSizeF box_;
  bool stretches_ = false;
};

}  // namespace tarnwick::ui
