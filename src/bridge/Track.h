#pragma once
#include <gio/gio.h>

#include <cstdint>
#include <string>

namespace tarnwick {

/// More than any track lasts, in microseconds: what is said to be longer, or to be farther on, means nothing.
inline constexpr int64_t longestTrack = int64_t{1000} * 3600 * 1'000'000;

/// What a player says about the track that it has loaded. All texts are of a bounded length.
struct Track {
  /// Object path; empty when the player has none to give.
  std::string id;
  std::string title;
  std::string artist;
  std::string album;
  /// Microseconds; 0: unknown.
  int64_t length = 0;
  std::string artUrl;

  /// From the player's metadata, a{sv}.
  static Track from(GVariant* metadata);

  /// The player has gone on to another track.
  bool isAnotherThan(const Track& other) const { return id != other.id || title != other.title; }
  friend bool operator==(const Track&, const Track&) = default;
};

/// A number of whatever type the player took for it; 0 when it is none.
int64_t integer(GVariant* value);

}  // namespace tarnwick
