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

/// A moving sum over `count` steps of `lanes` bytes side by side: one value, or all of a line. The loops over
/// the lanes are what the compiler turns into vector instructions.
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

/// Weights in 1/256 of a value and its neighbours at a distance of one and of two.
struct Weights {
  uint16_t here, beside, beyond;
};

/// Those of two passes of three weights each, which have the variance wanted together.
Weights weightsFor(double sigma) {
  const double a = std::min(sigma * sigma, 1.0) / 4, rest = 1 - 2 * a;
  const auto beside = uint16_t(std::lround(256 * 2 * a * rest)), beyond = uint16_t(std::lround(256 * a * a));
  return {uint16_t(256 - 2 * beside - 2 * beyond), beside, beyond};
}

/// `sources` are five lines; the middle one lies at the place of the target.
void weightedSum(const std::array<const uint8_t*, 5>& sources, uint8_t* target, int count, Weights weights) {
  const auto [a, b, c, d, e] = sources;
  for (int i = 0; i < count; ++i) {
    target[i] = uint8_t(
        (weights.here * c[i] + weights.beside * (b[i] + d[i]) + weights.beyond * (a[i] + e[i]) + 128) >> 8);
  }
}

}  // namespace

void blur(AlphaMap& map, double sigma) {
  if (map.width <= 0 || map.height <= 0) return;
  std::vector<uint8_t> copy(map.values.size());
  std::vector<uint16_t> sum(size_t(map.width));
  for (int box : boxWidths(sigma)) {
    if (box <= 1) continue;
    box = std::min(box, widestBox);
    for (std::ptrdiff_t row = 0; row < std::ptrdiff_t(map.values.size()); row += map.width) {
      movingSum<1>(map.values.data() + row, copy.data() + row, map.width, 1, 1, box, sum.data());
    }
    movingSum<0>(copy.data(), map.values.data(), map.height, map.width, map.width, box, sum.data());
  }
}

void blurSlightly(QImage& image, double sigma) {
  const Weights weights = weightsFor(sigma);
  if (weights.beside == 0) return;
  constexpr int reach = 2, pixel = 4;
  const int bytes = image.width() * pixel;
  // The lines around the one at work, blurred along themselves.
  std::array<std::vector<uint8_t>, 2 * reach + 1> lines;
  for (auto& line : lines) line.resize(size_t(bytes));
  const auto line = [&](int y) -> std::vector<uint8_t>& { return lines[size_t(y) % lines.size()]; };
  std::vector<uint8_t> padded(size_t(bytes + 2 * reach * pixel));
  for (int y = 0; y < image.height() + reach; ++y) {
    if (y < image.height()) {
      std::copy_n(image.constScanLine(y), bytes, padded.data() + reach * pixel);
      const uint8_t* p = padded.data();
      weightedSum(
          {p, p + pixel, p + 2 * pixel, p + 3 * pixel, p + 4 * pixel}, line(y).data(), bytes, weights);
    } else {
      std::ranges::fill(line(y), uint8_t(0));
    }
    if (y < reach) continue;
    const auto around = [&](int step) { return line(y - reach + step + int(lines.size())).data(); };
    weightedSum(
        {around(-2), around(-1), around(0), around(1), around(2)}, image.scanLine(y - reach), bytes, weights);
  }
}

}  // namespace tarnwick::ui
