#pragma once
#include <string>

namespace tarnwick {

/// Plays the desktop's own sounds.
class SoundPlayer {
 public:
  virtual ~SoundPlayer() = default;
  /// Plays "Glass", "Funk", "Pop" or "Basso" once and returns at once. A sound that is missing plays nothing.
  virtual void play(const std::string& name) = 0;
};

}  // namespace tarnwick
