#pragma once

namespace tarnwick {

/// The desktop's own sounds, as the sound naming specification has them.
enum class Sound { complete, message, powerPlug, batteryLow };

/// Plays the desktop's own sounds.
class SoundPlayer {
 public:
  virtual ~SoundPlayer() = default;
  /// Plays it once and returns at once. A sound that is missing plays nothing.
  virtual void play(Sound sound) = 0;
};

}  // namespace tarnwick
