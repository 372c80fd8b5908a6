#include "ui/Blur.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarnwick::ui {
namespace {

/// Widths of three box blurs that together have the variance wanted (each odd).
std::array<int, 3> boxWidths(double sigma) {
  constexpr int n = 3;
  const double ideal = std::sqrt(12 * sigma * sigma / n + 1);
  int lower = int(ideal);
  if (lower % 2 == 0) --lower;
  lower = std::max(1, lower);
  const double m = (12 * sigma * sigma - n * lower * lower - 4 * n * lower - 3 * n) / (-4.0 * lower - 4);
  const int lowerCount = int(std::round(m));
  std::array<int, 3> widths;
  for (int i = 0; i < n; ++i) widths[size_t(i)] = i < lowerCount ? lower : lower + 2;
  return widths;
}

/// One box blur along a line of `count` pixels with `channels` bytes each, `stride` bytes apart.
template<int channels>
void boxLine(const uint8_t* source, uint8_t* target, int count, std::ptrdiff_t stride, int width) {
  const int radius = width / 2;
  const uint32_t scale = (1u << 24) / uint32_t(width);
  std::array<uint32_t, channels> sum{};
  const auto at = [&](int i, int c) { return source[std::ptrdiff_t(i) * stride + c]; };
  for (int i = 0; i < std::min(radius, count); ++i) {
    for (int c = 0; c < channels; ++c) sum[size_t(c)] += at(i, c);
  }
  for (int i = 0; i < count; ++i) {
    const int enters = i + radius, leaves = i - radius - 1;
    for (int c = 0; c < channels; ++c) {
      if (enters < count) sum[size_t(c)] += at(enters, c);
      if (leaves >= 0) sum[size_t(c)] -= at(leaves, c);
      target[std::ptrdiff_t(i) * stride + c] = uint8_t((uint64_t(sum[size_t(c)]) * scale + (1u << 23)) >> 24);
    }
  }
}

template<int channels>
void blurPlane(uint8_t* data, int width, int height, std::ptrdiff_t rowStride, double sigma) {
  if (width <= 0 || height <= 0) return;
  std::vector<uint8_t> copy(size_t(rowStride) * size_t(height));
  for (const int box : boxWidths(sigma)) {
    if (box <= 1) continue;
    for (int y = 0; y < height; ++y) {
      boxLine<channels>(data + y * rowStride, copy.data() + y * rowStride, width, channels, box);
    }
    for (int x = 0; x < width; ++x) {
      boxLine<channels>(copy.data() + x * channels, data + x * channels, height, rowStride, box);
    }
  }
}

}  // namespace

void blur(AlphaMap& map, double sigma) { blurPlane<1>(map.values.data(), map.width, map.height, map.width, sigma); }

void blur(QImage& image, double sigma) {
  blurPlane<4>(image.bits(), image.width(), image.height(), image.bytesPerLine(), sigma);
}

}  // namespace tarnwick::ui
