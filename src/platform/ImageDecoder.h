#pragma once
#include <optional>
#include <string_view>

#include "base/Image.h"

namespace tarnwick {

class ImageDecoder {
 public:
  virtual ~ImageDecoder() = default;
  /// The picture in the bytes of an image file, made smaller when it is larger than the notch could show;
  /// none when they are no such thing. Takes its time; for any thread.
  virtual std::optional<Image> decode(std::string_view bytes) const = 0;
};

}  // namespace tarnwick
