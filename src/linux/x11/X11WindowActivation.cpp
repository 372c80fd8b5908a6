#include "linux/x11/X11WindowActivation.h"

#include <strings.h>

namespace tarnwick {

bool X11WindowActivation::bringForward(const std::vector<std::string>& names) {
  const auto clients =
      connection_.property(connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST"));
  if (!clients) return false;
  std::vector<xcb_get_property_cookie_t> requests;
  for (const xcb_window_t window : *clients) {
    requests.push_back(xcb_get_property(connection_, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256));
  }
  xcb_window_t found = XCB_WINDOW_NONE;
  for (size_t i = 0; i < requests.size(); ++i) {
    const auto reply = owned(xcb_get_property_reply(connection_, requests[i], nullptr));
    if (!reply) continue;
    const std::string classes(static_cast<const char*>(xcb_get_property_value(reply.get())),
                              static_cast<size_t>(xcb_get_property_value_length(reply.get())));
    // The name of the instance and that of the class, each with a zero.
    const std::string instance = classes.c_str();
    const std::string group = instance.size() < classes.size() ? classes.c_str() + instance.size() + 1 : "";
    for (const std::string& wanted : names) {
      if (!wanted.empty() && (strcasecmp(wanted.c_str(), instance.c_str()) == 0 ||
                              strcasecmp(wanted.c_str(), group.c_str()) == 0)) {
        found = (*clients)[i];
      }
    }
  }
  if (found == XCB_WINDOW_NONE) return false;
  constexpr uint32_t fromUser = 2;
  xcb_client_message_event_t message = {};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = found;
  message.type = connection_.atom("_NET_ACTIVE_WINDOW");
  message.data.data32[0] = fromUser;
  xcb_send_event(connection_, 0, connection_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(connection_);
  return true;
}

}  // namespace tarnwick
