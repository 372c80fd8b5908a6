#include "services/MediaReader.h"

#include <tuple>

#include "services/AccentColor.h"

namespace tarnwick {

std::optional<MediaUpdate> MediaReader::read(std::string_view bytes) {
  std::optional<MediaLine> last;
  for (std::string& text : buffer_.append(bytes)) {
    std::optional<MediaLine> line = MediaLine::parse(text);
    if (!line) continue;
    takeArtwork(*line);
    line->artwork.reset();
    // A line that names no process leaves the one before.
    if (!line->pid && last) std::tie(line->pid, line->desktopEntry) = std::tie(last->pid, last->desktopEntry);
    last = std::move(line);
  }
  if (!last) return std::nullopt;
  takeApplication(*last);
  return MediaUpdate{std::move(*last), artwork_, application_};
}

void MediaReader::takeArtwork(const MediaLine& line) {
  if (line.artwork) {
    if (const std::optional<Image> image = images_.decode(*line.artwork)) {
      artwork_ = MediaArtwork{image, accentOf(*image)};
      return;
    }
  }
  if (line.artworkId == 0) artwork_ = MediaArtwork{};
}

void MediaReader::takeApplication(const MediaLine& line) {
  if (!line.pid || lookedUp_ == std::pair(*line.pid, line.desktopEntry)) return;
  lookedUp_ = {*line.pid, line.desktopEntry};
  if (auto application = applications_.runningApplication(*line.pid, line.desktopEntry)) {
    application_ = std::move(application);
  }
}

}  // namespace tarnwick
