#include "linux/x11/X11WindowList.h"

#include <unistd.h>

#include <algorithm>

namespace tarnwick {
namespace {

constexpr uint32_t everyDesktop = 0xffffffff;

bool holds(const std::optional<std::vector<uint32_t>>& values, uint32_t value) {
  return values && std::find(values->begin(), values->end(), value) != values->end();
}

}  // namespace

X11WindowList::X11WindowList(X11Connection& connection, const X11Screens& screens)
    : connection_(connection), screens_(screens) {
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    // From CreateNotify to PropertyNotify: all that happens to the root window or to a window on it.
    // Minimising and switching workspaces show as unmapped frames or in the root's properties.
    if (type >= XCB_CREATE_NOTIFY && type <= XCB_PROPERTY_NOTIFY) stale_ = true;
  });
}

int64_t X11WindowList::ownProcess() const { return ::getpid(); }

std::optional<std::vector<WindowInfo>> X11WindowList::onScreen() const {
  if (stale_) {
    stale_ = false;
    windows_ = read();
  }
  if (!windows_) return std::nullopt;
  std::vector<WindowInfo> list;
  for (const PixelWindow& window : *windows_)
    list.push_back({0, window.owner, screens_.toPoints(window.pixels)});
  return list;
}

std::optional<std::vector<X11WindowList::PixelWindow>> X11WindowList::read() const {
  const auto listCookie = connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST");
  const auto desktopCookie = connection_.requestProperty(connection_.root(), "_NET_CURRENT_DESKTOP");
  const auto clients = connection_.property(listCookie);
  const auto current = connection_.property(desktopCookie);
  if (!clients) return std::nullopt;

  struct Request {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_property_cookie_t desktop, state, type, process, extents;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t place;
  };
  std::vector<Request> requests;
  for (const xcb_window_t window : *clients) {
    requests.push_back({xcb_get_window_attributes(connection_, window),
                        connection_.requestProperty(window, "_NET_WM_DESKTOP"),
                        connection_.requestProperty(window, "_NET_WM_STATE"),
                        connection_.requestProperty(window, "_NET_WM_WINDOW_TYPE"),
                        connection_.requestProperty(window, "_NET_WM_PID"),
                        connection_.requestProperty(window, "_NET_FRAME_EXTENTS"),
                        xcb_get_geometry(connection_, window),
                        xcb_translate_coordinates(connection_, window, connection_.root(), 0, 0)});
  }
  std::vector<PixelWindow> windows;
  for (const Request& request : requests) {
    const auto attributes = owned(xcb_get_window_attributes_reply(connection_, request.attributes, nullptr));
    const auto desktop = connection_.property(request.desktop);
    const auto state = connection_.property(request.state);
    const auto type = connection_.property(request.type);
    const auto process = connection_.property(request.process);
    const auto extents = connection_.property(request.extents);
    const auto geometry = owned(xcb_get_geometry_reply(connection_, request.geometry, nullptr));
    const auto place = owned(xcb_translate_coordinates_reply(connection_, request.place, nullptr));
    if (!attributes || !geometry || !place) continue;  // it has just been closed

    const bool elsewhere = desktop && !desktop->empty() && current && !current->empty() &&
                           desktop->front() != everyDesktop && desktop->front() != current->front();
    if (attributes->map_state != XCB_MAP_STATE_VIEWABLE || elsewhere ||
        holds(state, connection_.atom("_NET_WM_STATE_HIDDEN")) ||
        holds(type, connection_.atom("_NET_WM_WINDOW_TYPE_DOCK")) ||
        holds(type, connection_.atom("_NET_WM_WINDOW_TYPE_DESKTOP"))) {
      continue;
    }
    PixelWindow window;
    if (process && !process->empty()) window.owner = process->front();
    window.pixels = {double(place->dst_x), double(place->dst_y), double(geometry->width),
                     double(geometry->height)};
    if (extents && extents->size() == 4) {
      const double left = (*extents)[0], right = (*extents)[1], top = (*extents)[2], bottom = (*extents)[3];
      window.pixels = {window.pixels.x - left, window.pixels.y - top, window.pixels.width + left + right,
                       window.pixels.height + top + bottom};
    }
    windows.push_back(window);
  }
  return windows;
}

}  // namespace tarnwick
