#pragma once
#include <optional>
#include <string>

#include "base/Color.h"
#include "base/CrabMood.h"
#include "base/Uuid.h"

namespace tarnwick {

/// A card that drops out of the notch. Two banners with the same texts are still different ones.
struct Banner {
  Uuid id = Uuid::random();
  /// Symbol name.
  std::string icon;
  Color tint;
  std::string title;
  std::string subtitle;
  /// When present, the mascot is drawn in this mood instead of the icon.
  std::optional<CrabMood> crab;
  /// What exactly it is about, such as a command: shown beside the subtitle, as far as there is room.
  std::string detail = {};
  /// The session that it is about; empty when it is about none.
  std::string session = {};

  friend bool operator==(const Banner&, const Banner&) = default;
};

}  // namespace tarnwick
