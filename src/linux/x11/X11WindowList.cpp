#include "linux/x11/X11WindowList.h"

#include <unistd.h>

#include <algorithm>

namespace tarnwick {
namespace {

constexpr uint32_t everyDesktop = 0xffffffff;
/// Windows are moved in many small steps.
constexpr double tellDelay = 0.3;

bool holds(const std::optional<std::vector<uint32_t>>& values, uint32_t value) {
  return values && std::find(values->begin(), values->end(), value) != values->end();
}

}  // namespace

X11WindowList::X11WindowList(X11Connection& connection, const X11Screens& screens, Scheduler& scheduler)
    : connection_(connection), screens_(screens), scheduler_(scheduler) {
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) { handle(event); });
}

void X11WindowList::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    // Minimising and switching workspaces show as unmapped frames or in the root's properties.
    case XCB_DESTROY_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_REPARENT_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
      return changed();
    case XCB_PROPERTY_NOTIFY:
      for (const char* name :
          {"_NET_CLIENT_LIST", "_NET_CURRENT_DESKTOP", "_NET_WM_STATE", "_NET_WM_DESKTOP"}) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.atom == connection_.atom(name)) return changed();
      }
  }
}

void X11WindowList::changed() {
  stale_ = true;
  if (std::exchange(willTell_, true)) return;
  telling_ = scheduler_.after(tellDelay, [this] {
    willTell_ = false;
    changes_.notifyObservers();
  });
}

int64_t X11WindowList::ownProcess() const { return ::getpid(); }

std::optional<std::vector<WindowInfo>> X11WindowList::onScreen() {
  const bool wasStale = std::exchange(stale_, false);
  if (wasStale) windows_ = read();
  if (!windows_) return std::nullopt;
  const std::vector<Screen> screens = screens_.all();
  std::vector<WindowInfo> list;
  std::set<xcb_window_t> screenSized;
  for (const PixelWindow& window : *windows_) {
    list.push_back({window.owner, screens_.toPoints(window.pixels), window.maximized});
    const Rect& bounds = list.back().bounds;
    if (std::any_of(screens.begin(), screens.end(), [&](const Screen& s) { return s.frame == bounds; })) {
      screenSized.insert(window.window);
    }
  }
  if (wasStale) watch(screenSized);
  return list;
}

std::optional<std::vector<X11WindowList::PixelWindow>> X11WindowList::read() const {
  const auto listCookie = connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST");
  const auto desktopCookie = connection_.requestProperty(connection_.root(), "_NET_CURRENT_DESKTOP");
  const auto clients = connection_.property(listCookie);
  const auto current = connection_.property(desktopCookie);
  if (!clients) return std::nullopt;

  struct Request {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_property_cookie_t desktop, state, type, process;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t place;
  };
  std::vector<Request> requests;
  for (const xcb_window_t window : *clients) {
    requests.push_back({window, xcb_get_window_attributes(connection_, window),
        connection_.requestProperty(window, "_NET_WM_DESKTOP"),
        connection_.requestProperty(window, "_NET_WM_STATE"),
        connection_.requestProperty(window, "_NET_WM_WINDOW_TYPE"),
        connection_.requestProperty(window, "_NET_WM_PID"), xcb_get_geometry(connection_, window),
        xcb_translate_coordinates(connection_, window, connection_.root(), 0, 0)});
  }
  const bool hiddenOnesAreMapped = managerComposes();
  std::vector<PixelWindow> windows;
  for (const Request& request : requests) {
    const auto attributes = owned(xcb_get_window_attributes_reply(connection_, request.attributes, nullptr));
    const auto desktop = connection_.property(request.desktop);
    const auto state = connection_.property(request.state);
    const auto type = connection_.property(request.type);
    const auto process = connection_.property(request.process);
    const auto geometry = owned(xcb_get_geometry_reply(connection_, request.geometry, nullptr));
    const auto place = owned(xcb_translate_coordinates_reply(connection_, request.place, nullptr));
    if (!attributes || !geometry || !place) continue;  // it has just been closed

    const bool elsewhere =
        hiddenOnesAreMapped && desktop && !desktop->empty() && current && !current->empty() &&
        desktop->front() != everyDesktop && desktop->front() != current->front();
    const auto has = [&](const char* name) { return holds(state, connection_.atom(name)); };
    if (attributes->map_state != XCB_MAP_STATE_VIEWABLE || elsewhere || has("_NET_WM_STATE_HIDDEN") ||
        holds(type, connection_.atom("_NET_WM_WINDOW_TYPE_DOCK")) ||
        holds(type, connection_.atom("_NET_WM_WINDOW_TYPE_DESKTOP"))) {
      continue;
    }
    windows.push_back({.window = request.window,
        .owner = process && !process->empty() ? std::optional<int64_t>(process->front()) : std::nullopt,
        .pixels = {double(place->dst_x), double(place->dst_y), double(geometry->width),
            double(geometry->height)},
        .maximized = has("_NET_WM_STATE_MAXIMIZED_VERT") && has("_NET_WM_STATE_MAXIMIZED_HORZ") &&
                     !has("_NET_WM_STATE_FULLSCREEN")});
  }
  return windows;
}

/// A window manager that composes the screen itself keeps the windows of other workspaces mapped, and has the
/// same workspace on all monitors. Any other one unmaps what is not to be seen; with a workspace for each
/// monitor the current one is only that of the monitor that has the focus.
bool X11WindowList::managerComposes() const {
  const auto checkCookie = connection_.requestProperty(connection_.root(), "_NET_SUPPORTING_WM_CHECK");
  const auto ownerCookie = xcb_get_selection_owner(
      connection_, connection_.atom("_NET_WM_CM_S" + std::to_string(connection_.screenNumber())));
  const auto check = connection_.property(checkCookie);
  const auto owner = owned(xcb_get_selection_owner_reply(connection_, ownerCookie, nullptr));
  // What a client makes has its own bits above those of the mask.
  const uint32_t client = ~xcb_get_setup(connection_)->resource_id_mask;
  return check && !check->empty() && owner && owner->owner != XCB_WINDOW_NONE &&
         (check->front() & client) == (owner->owner & client);
}

void X11WindowList::watch(const std::set<xcb_window_t>& windows) {
  const auto listen = [this](xcb_window_t window, uint32_t events) {
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &events);
  };
  for (const xcb_window_t window : watched_) {
    if (!windows.contains(window)) listen(window, XCB_EVENT_MASK_NO_EVENT);
  }
  for (const xcb_window_t window : windows) {
    if (watched_.contains(window)) continue;
    listen(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    // It may have changed since it was read.
    changed();
  }
  watched_ = windows;
  xcb_flush(connection_);
}

}  // namespace tarnwick
