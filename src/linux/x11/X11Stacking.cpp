#include "linux/x11/X11Stacking.h"

#include <algorithm>

namespace tarnwick {
namespace {

/// Two programs that both want to be on top must not keep the machine busy.
constexpr double raiseDelay = 0.1;

}  // namespace

X11Stacking::X11Stacking(X11Connection& connection, Scheduler& scheduler, xcb_window_t window)
    : connection_(connection), scheduler_(scheduler), window_(window) {
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) { handle(event); });
}

void X11Stacking::handle(const xcb_generic_event_t& event) {
  // What can put a window above: mapping, restacking, and a window manager taking it into a frame.
  const uint8_t type = event.response_type & 0x7f;
  const bool restacks =
      type == XCB_MAP_NOTIFY || type == XCB_CONFIGURE_NOTIFY || type == XCB_REPARENT_NOTIFY ||
      type == XCB_CIRCULATE_NOTIFY;
  if (!restacks || raisePending_) return;
  // These all begin with the window that tells, followed by the one that it happened to.
  if (reinterpret_cast<const xcb_map_notify_event_t&>(event).window == window_) return;
  raisePending_ = true;
  raising_ = scheduler_.after(raiseDelay, [this] {
    raisePending_ = false;
    raise();
  });
}

void X11Stacking::raise() {
  const auto tree =
      owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, connection_.root()), nullptr));
  if (!tree) return;
  const xcb_window_t* begin = xcb_query_tree_children(tree.get());
  const xcb_window_t* end = begin + xcb_query_tree_children_length(tree.get());
  const xcb_window_t* self = std::find(begin, end, window_);
  if (self == end || self + 1 == end) return;

  const xcb_window_t below = highestToPass({self + 1, end});
  if (below == XCB_WINDOW_NONE) return;
  const uint32_t values[] = {below, XCB_STACK_MODE_ABOVE};
  xcb_configure_window(
      connection_, window_, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values);
  xcb_flush(connection_);
}

xcb_window_t X11Stacking::highestToPass(const std::vector<xcb_window_t>& above) const {
  struct Request {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_query_tree_cookie_t children;
    xcb_get_property_cookie_t type;
  };
  std::vector<Request> requests;
  for (auto window = above.rbegin(); window != above.rend(); ++window) {
    requests.push_back({*window, xcb_get_window_attributes(connection_, *window),
        xcb_query_tree(connection_, *window), connection_.requestProperty(*window, "_NET_WM_WINDOW_TYPE")});
  }
  const auto clients =
      connection_.property(connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST"));
  const auto isManaged = [&](xcb_window_t window) {
    return clients && std::find(clients->begin(), clients->end(), window) != clients->end();
  };
  xcb_window_t highest = XCB_WINDOW_NONE;
  for (const Request& request : requests) {
    const auto attributes = owned(xcb_get_window_attributes_reply(connection_, request.attributes, nullptr));
    const auto children = owned(xcb_query_tree_reply(connection_, request.children, nullptr));
    const auto type = connection_.property(request.type);
    if (highest || !attributes || !children || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
    // A managed window lies on the root itself or in the window manager's frame.
    const xcb_window_t* child = xcb_query_tree_children(children.get());
    const bool framed = std::any_of(child, child + xcb_query_tree_children_length(children.get()), isManaged);
    const bool isPanel =
        type &&
        std::find(type->begin(), type->end(), connection_.atom("_NET_WM_WINDOW_TYPE_DOCK")) != type->end();
    if (framed || isManaged(request.window) || isPanel) highest = request.window;
  }
  return highest;
}

}  // namespace tarnwick
