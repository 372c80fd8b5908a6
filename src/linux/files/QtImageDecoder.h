#pragma once
#include <string>

#include "platform/ImageDecoder.h"

namespace tarnwick {

/// Pictures by the toolkit's readers, which are loaded when one is first needed.
class QtImageDecoder : public ImageDecoder {
 public:
  std::optional<Image> decode(std::string_view bytes) const override;
  /// The picture in a file, SVG included.
  std::optional<Image> decodeFile(const std::string& path) const;
};

}  // namespace tarnwick
