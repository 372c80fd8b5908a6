#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

/// One line of the media bridge: the whole state of what plays. What a line lacks, or has of a wrong type,
/// has the value given here.
struct MediaLine {
  std::string title, artist, album;
  /// Seconds.
  double duration = 0, elapsed = 0;
  /// Seconds since 1970; none: now.
  std::optional<double> timestamp;
  bool playing = false;
  /// Seconds of the track that are played in a second.
  double rate = 1;
  /// Identifies the current cover; 0: there is none.
  int64_t artworkId = 0;
  /// The bytes of a new cover's image file, a small PNG.
  std::optional<std::string> artwork;
  /// The process that plays.
  std::optional<int32_t> pid;
  /// What that process calls its application.
  std::string desktopEntry;
  /// The player can bring its window forward.
  bool canRaise = false;
  bool canSeek = true;

  /// None when the line is no JSON object.
  static std::optional<MediaLine> parse(std::string_view line);
};

}  // namespace tarnwick
