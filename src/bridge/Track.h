#pragma once
#include <gio/gio.h>

#include <cstdint>
#include <string>

namespace tarnwick {

/// What a player says about the track that it has loaded. Texts are of a bounded length.
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
