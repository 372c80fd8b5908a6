#pragma once
#include <vector>

#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// Passive grabs of keys on the root window, which end with it. X never passes a grabbed key on; one that
/// another program has grabbed cannot be had until that program lets go of it or ends.
class X11KeyGrab {
 public:
  struct Key {
    xcb_keycode_t keycode;
    /// XCB_MOD_MASK_ANY: with whichever are held.
    uint16_t modifiers;
  };

  /// Asks for them; see `isComplete`.
  X11KeyGrab(X11Connection& connection, std::vector<Key> keys);
  ~X11KeyGrab();
  X11KeyGrab(const X11KeyGrab&) = delete;
  X11KeyGrab& operator=(const X11KeyGrab&) = delete;

  /// Whether it has got them all.
  bool isComplete() const { return isComplete_; }

 private:
  X11Connection& connection_;
  const std::vector<Key> keys_;
  bool isComplete_ = true;
};

/// Tells a key that repeats while it is held from one that is pressed: it is released and pressed at the same
/// instant.
class X11KeyRepeats {
 public:
  /// To be asked once about each event.
  bool isRepeat(const xcb_key_press_event_t& event, bool down) {
    const auto now = std::pair(event.detail, event.time);
    const bool repeats = down && lastRelease_ == now;
    if (!down) lastRelease_ = now;
    return repeats;
  }

 private:
  std::optional<std::pair<xcb_keycode_t, xcb_timestamp_t>> lastRelease_;
};

}  // namespace tarnwick
