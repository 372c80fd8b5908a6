#include "ui/ShadowPatch.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <deque>

#include "ui/Drawing.h"

namespace tarnwick::ui {
namespace {

/// The blurred map is made at a scale at which its standard deviation is about this many pixels.
constexpr double mapSigma = 3;
constexpr size_t mostKept = 12;

struct Key {
  Shape shape;
  Size size;
  double radius, scale;
  friend bool operator==(const Key&, const Key&) = default;
};

}  // namespace

std::shared_ptr<const ShadowPatch> ShadowPatch::of(const Shape& shape, Size size, double radius, double scale) {
  const double sigma = std::max(0.5, radius * scale);
  const double reach = std::ceil(3 * sigma);
  // The middle may be stretched when it lies beyond what corners and blur change.
  const double corner = shape.cornerExtent * scale + 2 * reach;
  const QSizeF whole(size.width * scale, size.height * scale);
  const bool stretches = shape.cornerExtent >= 0 && whole.width() > 2 * corner + 2;
  const QSizeF box(stretches ? 2 * corner + 2 : whole.width(), whole.height());

  static std::deque<std::pair<Key, std::shared_ptr<const ShadowPatch>>> kept;
  const Key key{shape, {box.width(), box.height()}, radius, scale};
  for (const auto& [known, patch] : kept) {
    if (known == key) return patch;
  }
  auto patch = std::make_shared<ShadowPatch>();
  patch->reduction_ = std::max(1.0, sigma / mapSigma);
  patch->reach_ = reach;
  patch->box_ = box;
  patch->stretches_ = stretches;
  const double r = patch->reduction_;
  const int width = int(std::ceil((box.width() + 2 * reach) / r)) + 1;
  const int height = int(std::ceil((box.height() + 2 * reach) / r)) + 1;
  if (width > 4096 || height > 4096) return patch;

  QImage drawn(width, height, QImage::Format_Alpha8);
  drawn.fill(0);
  QPainter painter(&drawn);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(1 / r, 1 / r);
  painter.translate(reach, reach);
  painter.scale(scale, scale);
  painter.fillPath(outline(shape, {box.width() / scale, box.height() / scale}), Qt::black);
  painter.end();

  patch->map_.width = width;
  patch->map_.height = height;
  patch->map_.values.resize(size_t(width) * size_t(height));
  for (int y = 0; y < height; ++y) {
    std::copy_n(drawn.constScanLine(y), width, patch->map_.values.data() + size_t(y) * size_t(width));
  }
  blur(patch->map_, sigma / r);
  kept.emplace_front(key, patch);
  if (kept.size() > mostKept) kept.pop_back();
  return patch;
}

std::vector<ShadowPatch::Sample> ShadowPatch::samples(double start, double length, int from, int count,
                                                      bool horizontal) const {
  const double box = horizontal ? box_.width() : box_.height();
  const int last = (horizontal ? map_.width : map_.height) - 1;
  std::vector<Sample> result(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    double p = from + i + 0.5 - start;
    // Left half from the left edge, right half from the right one; what is between shows the middle.
    if (horizontal && stretches_) {
      if (p > length / 2) p = std::max(p - length + box, box / 2);
      else p = std::min(p, box / 2);
    }
    const double m = (p + reach_) / reduction_ - 0.5;
    const double floored = std::floor(m);
    const int index = int(floored);
    if (index < 0) result[size_t(i)] = {0, 0};
    else if (index >= last) result[size_t(i)] = {last - 1, 256};
    else result[size_t(i)] = {index, int((m - floored) * 256)};
  }
  return result;
}

void ShadowPatch::draw(QImage& target, QPointF corner, QSizeF size, Color color, const QRect& clip) const {
  if (map_.values.empty() || color.alpha <= 0) return;
  const QRect reachable = QRectF(corner, size).adjusted(-reach_, -reach_, reach_, reach_).toAlignedRect();
  const QRect area = reachable & clip & target.rect();
  if (area.isEmpty()) return;
  const std::vector<Sample> columns = samples(corner.x(), size.width(), area.x(), area.width(), true);
  const std::vector<Sample> rows = samples(corner.y(), size.height(), area.y(), area.height(), false);

  // 16.16 factors that turn a coverage of 0…255·256 into premultiplied channels.
  const double strength = std::clamp(color.alpha, 0.0, 1.0);
  const auto factor = [&](double channel) { return uint32_t(std::round(channel * strength * 65536 / 256)); };
  const uint32_t fa = factor(1), fr = factor(color.red), fg = factor(color.green), fb = factor(color.blue);
  const bool black = fr == 0 && fg == 0 && fb == 0;

  std::vector<uint32_t> line(static_cast<size_t>(map_.width));
  for (int y = 0; y < area.height(); ++y) {
    const Sample row = rows[size_t(y)];
    const uint8_t* upper = map_.values.data() + size_t(row.index) * size_t(map_.width);
    const uint8_t* lower = upper + map_.width;
    for (int x = 0; x < map_.width; ++x) {
      line[size_t(x)] = upper[x] * uint32_t(256 - row.fraction) + lower[x] * uint32_t(row.fraction);
    }
    auto* pixels = reinterpret_cast<uint32_t*>(target.scanLine(area.y() + y)) + area.x();
    for (int x = 0; x < area.width(); ++x) {
      const Sample column = columns[size_t(x)];
      const uint32_t coverage =
          (line[size_t(column.index)] * uint32_t(256 - column.fraction) +
           line[size_t(column.index) + 1] * uint32_t(column.fraction)) >> 8;
      if (coverage == 0) continue;
      const uint32_t a = (coverage * fa + (1u << 15)) >> 16;
      const uint32_t below = pixels[x];
      if (below == 0 && black) {
        pixels[x] = a << 24;
        continue;
      }
      const uint32_t keep = 255 - a;
      const auto mix = [&](int shift, uint32_t f) {
        const uint32_t value = ((below >> shift & 255) * keep + 127) / 255 + ((coverage * f + (1u << 15)) >> 16);
        return std::min(255u, value) << shift;
      };
      pixels[x] = mix(24, fa) | mix(16, fr) | mix(8, fg) | mix(0, fb);
    }
  }
}

}  // namespace tarnwick::ui
