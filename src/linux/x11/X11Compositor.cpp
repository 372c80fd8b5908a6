#include "linux/x11/X11Compositor.h"

#include <xcb/xfixes.h>

namespace tarnwick {

X11Compositor::X11Compositor(X11Connection& connection) {
  const xcb_atom_t selection = connection.atom("_NET_WM_CM_S" + std::to_string(connection.screenNumber()));
  if (const uint8_t eventBase = connection.xfixesEventBase()) {
    xcb_xfixes_select_selection_input(connection, connection.root(), selection,
        XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
            XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
            XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    events_ = connection.onEvent([=, this](const xcb_generic_event_t& event) {
      if ((event.response_type & 0x7f) != eventBase + XCB_XFIXES_SELECTION_NOTIFY) return;
      const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
      if (change.selection != selection) return;
      const bool runs = change.owner != XCB_WINDOW_NONE;
      if (runs == isRunning_) return;
      isRunning_ = runs;
      changes_.notifyObservers();
    });
  }
  const auto owner = owned(
      xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
  isRunning_ = owner && owner->owner != XCB_WINDOW_NONE;
}

}  // namespace tarnwick
