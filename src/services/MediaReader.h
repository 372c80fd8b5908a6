#pragma once
#include <optional>
#include <string_view>
#include <utility>

#include "base/Color.h"
#include "platform/Applications.h"
#include "platform/ImageDecoder.h"
#include "services/LineBuffer.h"
#include "services/MediaLine.h"

namespace tarnwick {

/// A cover and the tint that goes with it.
struct MediaArtwork {
  std::optional<Image> image;
  Color accent = white();
};

/// What plays, as the last line of the bridge has it.
struct MediaUpdate {
  MediaLine line;
  /// None: whatever there was.
  std::optional<MediaArtwork> artwork;
  /// None: whatever there was.
  std::optional<Application> application;
};

/// Makes sense of what a media bridge writes. For any thread, one at a time.
class MediaReader {
 public:
  MediaReader(const ImageDecoder& images, Applications& applications)
      : images_(images), applications_(applications) {}

  /// Takes some of the bridge's output. Each line is a complete state, so that of several the last one
  /// counts.
  /// @return none when no line was completed
  std::optional<MediaUpdate> read(std::string_view bytes);

 private:
  void takeArtwork(const MediaLine& line);
  void takeApplication(const MediaLine& line);

  const ImageDecoder& images_;
  Applications& applications_;
  LineBuffer buffer_;
  std::optional<MediaArtwork> artwork_;
  std::optional<Application> application_;
  /// The process, and its own name, that was last looked up.
  std::pair<int32_t, std::string> lookedUp_;
};

}  // namespace tarnwick
