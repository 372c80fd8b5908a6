#include "ui/paint/Blur.h"

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

/// Sums of up to 255 bytes fit into 16 bits; wider boxes are what reduced copies are for.
constexpr int widestBox = 255;

/// A moving sum over `count` steps of `lanes` bytes side by side: all of a line of pixels, or all channels of
/// one pixel. The loops over the lanes are what the compiler turns into vector instructions.
template<int fixedLanes>
void movingSum(const uint8_t* source, uint8_t* target, int count, std::ptrdiff_t stride, int freeLanes,
               int width, uint16_t* sum) {
  const int lanes = fixedLanes ? fixedLanes : freeLanes;
  const int radius = width / 2;
  const uint32_t scale = (1u << 16) / uint32_t(width) + 1;
  std::fill_n(sum, lanes, uint16_t(0));
  for (int i = 0; i < std::min(radius, count); ++i) {
    const uint8_t* enters = source + i * stride;
    for (int lane = 0; lane < lanes; ++lane) sum[lane] = uint16_t(sum[lane] + enters[lane]);
  }
  for (int i = 0; i < count; ++i) {
    if (i + radius < count) {
      const uint8_t* enters = source + (i + radius) * stride;
      for (int lane = 0; lane < lanes; ++lane) sum[lane] = uint16_t(sum[lane] + enters[lane]);
    }
    if (i - radius - 1 >= 0) {
      const uint8_t* leaves = source + (i - radius - 1) * stride;
      for (int lane = 0; lane < lanes; ++lane) sum[lane] = uint16_t(sum[lane] - leaves[lane]);
    }
    uint8_t* to = target + i * stride;
    for (int lane = 0; lane < lanes; ++lane) to[lane] = uint8_t(sum[lane] * scale >> 16);
  }
}

template<int channels>
void blurPlane(uint8_t* data, int width, int height, std::ptrdiff_t rowStride, double sigma) {
  if (width <= 0 || height <= 0) return;
  std::vector<uint8_t> copy(size_t(rowStride) * size_t(height));
  std::vector<uint16_t> sum(size_t(width) * channels);
  for (int box : boxWidths(sigma)) {
    if (box <= 1) continue;
    box = std::min(box, widestBox);
    for (int y = 0; y < height; ++y) {
      movingSum<channels>(data + y * rowStride, copy.data() + y * rowStride, width, channels, channels, box,
                          sum.data());
    }
    movingSum<0>(copy.data(), data, height, rowStride, width * channels, box, sum.data());
  }
}

}  // namespace

void blur(AlphaMap& map, double sigma) {
  blurPlane<1>(map.values.data(), map.width, map.height, map.width, sigma);
}

void blur(QImage& image, double sigma) {
  blurPlane<4>(image.bits(), image.width(), image.height(), image.bytesPerLine(), sigma);
}

}  // namespace tarnwick::ui
