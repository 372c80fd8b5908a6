#pragma once
#include <QByteArray>
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

  /// Twice as large as the notch shows a cover at pixel ratio 2, for whoever magnifies it.
  static constexpr int sideOfCover = 400;

  /// @param mostPixels pictures of more are none
  /// @param longestSide in pixels; what is larger is made smaller
  explicit QtImageDecoder(int mostPixels = fewPixels, int longestSide = sideOfCover)
      : mostPixels_(mostPixels), longestSide_(longestSide) {}

  std::optional<Image> decode(std::string_view bytes) const override;
  /// The picture in a file, SVG included.
  std::optional<Image> decodeFile(const std::string& path) const;

 private:
  std::optional<Image> read(const QByteArray& bytes, const QByteArray& format) const;

  const int mostPixels_, longestSide_;
};

}  // namespace tarnwick
