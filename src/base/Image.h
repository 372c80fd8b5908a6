#pragma once
#include <cstdint>
#include <memory>
#include <vector>

namespace tarnwick {

/// An immutable picture. Pixels are 32-bit, 0xAARRGGBB with premultiplied alpha, rows from the top without
/// padding. Copies share the pixels; two images are equal when they share them.
struct Image {
  int width = 0, height = 0;
  std::shared_ptr<const std::vector<uint32_t>> pixels;

  friend bool operator==(const Image&, const Image&) = default;
};

}  // namespace tarnwick
