#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "base/ObservableObject.h"

namespace tarnwick {

/// Codes of the special keys.
namespace mediakey {
inline constexpr int soundUp = 0;
inline constexpr int soundDown = 1;
inline constexpr int brightnessUp = 2;
inline constexpr int brightnessDown = 3;
inline constexpr int mute = 7;
}  // namespace mediakey

/// Bits of the modifier keys that are held with a special key.
namespace modifierflag {
inline constexpr unsigned shift = 0x20000;
inline constexpr unsigned option = 0x80000;  ///< Alt
}  // namespace modifierflag

/// The keyboard's special keys, caught before the desktop's own handler sees them.
class MediaKeys {
 public:
  /// Takes a key going down (again, while it is held) or up. @return whether the key has done its work; where
  /// the session can pass it on, it is passed on otherwise
  using Handler = std::function<bool(int code, bool down, unsigned flags)>;

  virtual ~MediaKeys() = default;

  /// The session lets this program catch keys.
  virtual bool isTrusted() const = 0;
  /// Asks the user for the permission, where there is somebody to ask.
  virtual void requestTrust() = 0;
  /// Catches the keys with these codes, all of them, until the tap ends. None when that is not possible now.
  virtual std::optional<Subscription> tap(const std::vector<int>& codes, Handler handler) = 0;
  /// Calls `onMove` on the main thread when the keys have moved on the keyboard: taps from before may miss
  /// some.
  virtual Subscription observe(std::function<void()> onMove) = 0;
};

}  // namespace tarnwick
