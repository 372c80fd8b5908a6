#include "linux/x11/X11WindowActivation.h"

#include <strings.h>

#include <algorithm>

namespace tarnwick {
namespace {

/// Of windows within windows.
constexpr int mostLevels = 8;

}  // namespace

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
  bringForward(found);
  return true;
}

std::optional<uint32_t> X11WindowActivation::windowOf(uint32_t told, const std::vector<int32_t>& processes) {
  auto clients =
      connection_.property(connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST_STACKING"));
  if (!clients)
    clients = connection_.property(connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST"));
  if (!clients) return std::nullopt;
  std::vector<xcb_get_property_cookie_t> requests;
  for (const xcb_window_t window : *clients)
    requests.push_back(connection_.requestProperty(window, "_NET_WM_PID"));
  std::vector<std::optional<int32_t>> owners;
  for (const auto& request : requests) {
    const auto owner = connection_.property(request);
    owners.push_back(
        owner && !owner->empty() ? std::optional(static_cast<int32_t>(owner->front())) : std::nullopt);
  }
  // Some programs name a window within the one that the window manager knows.
  xcb_window_t window = told;
  for (int level = 0; level < mostLevels && window != XCB_WINDOW_NONE; ++level) {
    const auto found = std::ranges::find(*clients, window);
    if (found != clients->end()) {
      // The number may be another program's by now.
      const auto& owner = owners[static_cast<size_t>(found - clients->begin())];
      if (owner && std::ranges::count(processes, *owner) == 0) break;
      return window;
    }
    const auto tree = owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
    window = tree ? tree->parent : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
  }
  for (const int32_t process : processes) {
    for (size_t i = clients->size(); i-- > 0;) {
      if (owners[i] == process) return (*clients)[i];
    }
  }
  return std::nullopt;
}

void X11WindowActivation::bringForward(uint32_t window) {
  constexpr uint32_t fromUser = 2;
  xcb_client_message_event_t message = {};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = connection_.atom("_NET_ACTIVE_WINDOW");
  message.data.data32[0] = fromUser;
  xcb_send_event(connection_, 0, connection_.root(),
      XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
      reinterpret_cast<const char*>(&message));
  xcb_flush(connection_);
}

}  // namespace tarnwick
