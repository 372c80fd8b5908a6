#pragma once
#include <string>

#include "platform/ImageDecoder.h"

namespace tarnwick {

/// Pictures by the toolkit's readers, which are loaded when one is first needed.
class QtImageDecoder : public ImageDecoder {
 public:
  /// More than an icon has.
  static constexpr int fewPixels = 1024 * 1024;
  /// More than a cover has. To be unpacked they may need a quarter of a gigabyte, and seconds.
  static constexpr int manyPixels = 4096 * 4096;

  /// Pictures of more pixels than that are none.
  explicit QtImageDecoder(int mostPixels = fewPixels) : mostPixels_(mostPixels) {}

  std::optional<Image> decode(std::string_view bytes) const override;
  /// The picture in a file, SVG included.
  std::optional<Image> decodeFile(const std::string& path) const;

 private:
  const int mostPixels_;
};

}  // namespace tarnwick
