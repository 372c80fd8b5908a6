#pragma once
#include <QImage>
#include <cstdint>
#include <vector>

namespace tarnwick::ui {

/// Coverage of pixels, 0…255, rows from the top.
struct AlphaMap {
  int width = 0, height = 0;
  std::vector<uint8_t> values;
};

/// Gaussian blur with standard deviation `sigma` in pixels, as three box blurs. What lies outside is
/// transparent.
void blur(AlphaMap& map, double sigma);
/// The same for a picture in premultiplied ARGB, by at most one pixel: whatever is to be blurred farther is
/// drawn smaller.
void blurSlightly(QImage& image, double sigma);

}  // namespace tarnwick::ui
