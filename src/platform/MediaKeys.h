#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "base/ObservableObject.h"

namespace tarnwick {

/// The keyboard's special keys that change a level.
enum class MediaKey { soundUp, soundDown, mute, brightnessUp, brightnessDown };

/// A special key goes down (again, while it is held) or up.
struct MediaKeyEvent {
  MediaKey key;
  bool down = true;
  /// Modifiers that are held with it.
  bool shift = false, alt = false;

  friend bool operator==(const MediaKeyEvent&, const MediaKeyEvent&) = default;
};

/// The keyboard's special keys, caught before the desktop's own handler sees them.
class MediaKeys {
 public:
  /// @return whether the key has done its work; where the session can pass it on, it is passed on otherwise
  using Handler = std::function<bool(const MediaKeyEvent&)>;

  virtual ~MediaKeys() = default;

  /// The session lets this program catch all of these keys: it has them, or could have them now.
  virtual bool isTrusted(const std::vector<MediaKey>& keys) = 0;
  /// Asks the user for the permission, where there is somebody to ask.
  virtual void requestTrust() = 0;
  /// Catches these keys, all of them, until the tap ends. None when that is not possible now.
  virtual std::optional<Subscription> tap(const std::vector<MediaKey>& keys, Handler handler) = 0;
  /// Calls `onChange` on the main thread when keys that could not be caught may have come free, and when the
  /// keys have moved on the keyboard: taps from before may miss some.
  virtual Subscription observe(std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
