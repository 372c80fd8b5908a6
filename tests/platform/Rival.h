#pragma once
#include <memory>

#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// Another program that has grabbed a key.
class Rival {
 public:
  explicit Rival(unsigned keycode)
      : connection_(X11Connection::open()), keycode_(static_cast<xcb_keycode_t>(keycode)) {
    X11Connection& c = *connection_;
    const auto cookie = xcb_grab_key_checked(
        c, 0, c.root(), XCB_MOD_MASK_ANY, keycode_, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    hasKey = owned(xcb_request_check(c, cookie)) == nullptr;
  }
  void letGo() {
    xcb_ungrab_key(*connection_, keycode_, connection_->root(), XCB_MOD_MASK_ANY);
    xcb_flush(*connection_);
  }

  bool hasKey;

 private:
  std::unique_ptr<X11Connection> connection_;
  const xcb_keycode_t keycode_;
};

}  // namespace tarnwick
