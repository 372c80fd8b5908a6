#include "linux/x11/X11Focus.h"

#include <utility>

namespace tarnwick {

void X11Focus::take(xcb_window_t window) {
  const auto activeCookie = connection_.requestProperty(connection_.root(), "_NET_ACTIVE_WINDOW");
  const auto focusCookie = xcb_get_input_focus(connection_);
  const auto active = connection_.property(activeCookie);
  const auto focused = owned(xcb_get_input_focus_reply(connection_, focusCookie, nullptr));
  if (holder_ == window && focused && focused->focus == window) return;
  holder_ = window;
  previous_.clear();
  if (focused) previous_.push_back(focused->focus);
  if (active) previous_.insert(previous_.end(), active->begin(), active->end());
  focus(window);
}

void X11Focus::giveBack() {
  const xcb_window_t holder = std::exchange(holder_, XCB_WINDOW_NONE);
  if (holder == XCB_WINDOW_NONE) return;
  const auto focused =
      owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  if (!focused || focused->focus != holder) return;
  for (const xcb_window_t window : previous_) {
    // Values up to that of the root are no windows: nobody had the focus, or whoever the pointer is over.
    if (window > XCB_INPUT_FOCUS_POINTER_ROOT && window != connection_.root() && focus(window)) return;
  }
  const auto stacking =
      connection_.property(connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST_STACKING"));
  for (size_t i = stacking ? stacking->size() : 0; i > 0; --i) {
    if (focus((*stacking)[i - 1])) return;
  }
  focus(XCB_INPUT_FOCUS_POINTER_ROOT);
}

bool X11Focus::focus(xcb_window_t window) {
  const auto error = owned(xcb_request_check(connection_,
      xcb_set_input_focus_checked(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME)));
  return !error;
}

}  // namespace tarnwick
