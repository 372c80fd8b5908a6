#include "ui/paint/ShadowPatch.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <deque>

#include "ui/engine/Drawing.h"

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

std::shared_ptr<const ShadowPatch> ShadowPatch::of(
    const Shape& shape, Size size, double radius, double scale) {
  const double sigma = std::max(0.5, radius * scale);
  // Beyond this a blurred edge is below half a level of the strongest shadow that we draw.
  const double reach = std::ceil(2.5 * sigma);
  // The middle may be stretched when it lies beyond what corners and blur change.
  const double corner = shape.cornerExtent() * scale + reach;
  const QSizeF whole(size.width * scale, size.height * scale);
  const bool stretches = shape.cornerExtent() >= 0 && whole.width() > 2 * corner + 2;
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

std::vector<ShadowPatch::Sample> ShadowPatch::samples(
    double start, double length, int from, int count, bool horizontal) const {
  const double box = horizontal ? box_.width() : box_.height();
  const int last = (horizontal ? map_.width : map_.height) - 1;
  std::vector<Sample> result(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    double p = from + i + 0.5 - start;
    // Left half from the left edge, right half from the right one; what is between shows the middle.
    if (horizontal && stretches_) {
      if (p > length / 2)
        p = std::max(p - length + box, box / 2);
      else
        p = std::min(p, box / 2);
    }
    const double m = (p + reach_) / reduction_ - 0.5;
    const double floored = std::floor(m);
    const int index = int(floored);
    if (index < 0)
      result[size_t(i)] = {0, 0};
    else if (index >= last)
      result[size_t(i)] = {last - 1, 256};
    else
      result[size_t(i)] = {index, int((m - floored) * 256)};
  }
  return result;
}

/// A row of the map at the width of the target, in 1/256 of its values.
std::vector<uint16_t> ShadowPatch::widened(int row, const std::vector<Sample>& columns) const {
  const uint8_t* values = map_.values.data() + size_t(row) * size_t(map_.width);
  std::vector<uint16_t> wide(columns.size());
  for (size_t x = 0; x < columns.size(); ++x) {
    const Sample column = columns[x];
    wide[x] =
        uint16_t(values[column.index] * (256 - column.fraction) + values[column.index + 1] * column.fraction);
  }
  return wide;
}

namespace {

/// Premultiplied colour over what is there or beneath it, by a coverage of 0…255·256 that lies between two
/// lines.
struct Blend {
  uint32_t alpha, redBlue, green;
  bool beneath;

  Blend(Color color, bool isBeneath) : beneath(isBeneath) {
    const double strength = std::clamp(color.alpha, 0.0, 1.0);
    const auto byte = [&](double channel) {
      return uint32_t(std::lround(255 * std::clamp(channel, 0.0, 1.0)));
    };
    alpha = uint32_t(std::lround(256 * strength));
    redBlue = byte(color.red) << 16 | byte(color.blue);
    green = byte(color.green);
  }

  void run(
      uint32_t* pixels, const uint16_t* upper, const uint16_t* lower, uint32_t fraction, int count) const {
    if (beneath)
      runBeneath(pixels, upper, lower, fraction, count);
    else
      runOver(pixels, upper, lower, fraction, count);
  }

 private:
  void runBeneath(
      uint32_t* pixels, const uint16_t* upper, const uint16_t* lower, uint32_t fraction, int count) const {
    const uint32_t rest = 256 - fraction;
    for (int x = 0; x < count; ++x) {
      const uint32_t coverage = (upper[x] * rest + lower[x] * fraction) >> 8;
      const uint32_t above = pixels[x] >> 24, visible = 256 - above - (above >> 7);
      const uint32_t a = (((coverage * alpha + (1u << 15)) >> 16) * visible) >> 8, scale = a + (a >> 7);
      pixels[x] += a << 24 | (redBlue * scale >> 8 & 0xFF00FF) | (green * scale & 0xFF00);
    }
  }

  void runOver(
      uint32_t* pixels, const uint16_t* upper, const uint16_t* lower, uint32_t fraction, int count) const {
    const uint32_t rest = 256 - fraction;
    for (int x = 0; x < count; ++x) {
      const uint32_t coverage = (upper[x] * rest + lower[x] * fraction) >> 8;
      const uint32_t a = (coverage * alpha + (1u << 15)) >> 16;
      const uint32_t keep = 256 - a - (a >> 7), below = pixels[x], scale = a + (a >> 7);
      const uint32_t rb = ((below & 0xFF00FF) * keep + redBlue * scale) >> 8 & 0xFF00FF;
      const uint32_t g = ((below >> 8 & 0xFF) * keep + green * scale) >> 8 & 0xFF;
      const uint32_t al = ((below >> 24) * keep >> 8) + a;
      pixels[x] = al << 24 | g << 8 | rb;
    }
  }
};

}  // namespace

void ShadowPatch::draw(QImage& target, QPointF corner, QSizeF size, Color color, const QRect& clip,
    const QRect& hidden, bool beneath) const {
  if (map_.values.empty() || color.alpha <= 0) return;
  const QRect reachable = QRectF(corner, size).adjusted(-reach_, -reach_, reach_, reach_).toAlignedRect();
  const QRect area = reachable & clip & target.rect();
  if (area.isEmpty()) return;
  const std::vector<Sample> columns = samples(corner.x(), size.width(), area.x(), area.width(), true);
  const std::vector<Sample> rows = samples(corner.y(), size.height(), area.y(), area.height(), false);
  const QRect skipped = hidden & area;
  const Blend blend(color, beneath);

  // Rows of the map are few; each is brought to the width of the target once.
  int above = -2;
  std::vector<uint16_t> upper, lower;
  for (int y = 0; y < area.height(); ++y) {
    const Sample row = rows[size_t(y)];
    if (row.index != above) {
      upper = row.index == above + 1 ? std::move(lower) : widened(row.index, columns);
      lower = widened(row.index + 1, columns);
      above = row.index;
    }
    auto* pixels = reinterpret_cast<uint32_t*>(target.scanLine(area.y() + y)) + area.x();
    const bool crosses =
        !skipped.isEmpty() && area.y() + y >= skipped.top() && area.y() + y <= skipped.bottom();
    const int left = crosses ? skipped.left() - area.x() : area.width();
    blend.run(pixels, upper.data(), lower.data(), uint32_t(row.fraction), left);
    if (!crosses) continue;
    const int right = skipped.right() + 1 - area.x();
    blend.run(pixels + right, upper.data() + right, lower.data() + right, uint32_t(row.fraction),
        area.width() - right);
  }
}

}  // namespace tarnwick::ui
