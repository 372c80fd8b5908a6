#include "linux/x11/X11KeyGrab.h"

namespace tarnwick {

X11KeyGrab::X11KeyGrab(X11Connection& connection, std::vector<Key> keys)
    : connection_(connection), keys_(std::move(keys)) {
  std::vector<xcb_void_cookie_t> cookies;
  for (const Key& key : keys_) {
    cookies.push_back(xcb_grab_key_checked(connection_, 1, connection_.root(), key.modifiers, key.keycode,
        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
  }
  for (const auto cookie : cookies) isComplete_ &= owned(xcb_request_check(connection_, cookie)) == nullptr;
}

X11KeyGrab::~X11KeyGrab() {
  // Also of those that were not all got: only own grabs are touched.
  for (const Key& key : keys_) xcb_ungrab_key(connection_, key.keycode, connection_.root(), key.modifiers);
  xcb_flush(connection_);
}

}  // namespace tarnwick
