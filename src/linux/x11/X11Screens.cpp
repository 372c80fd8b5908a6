#include "linux/x11/X11Screens.h"

#include <xcb/randr.h>

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <limits>

namespace tarnwick {
namespace {

/// The strip that a panel keeps free along an edge of the whole display, in pixels.
std::vector<Rect> reservedStrips(const std::vector<uint32_t>& strut, Size display) {
  if (strut.size() < 4) return {};
  // left, right, top, bottom; then where along the edge each begins and ends (both inclusive).
  const auto begin = [&](size_t edge) { return strut.size() >= 12 ? strut[4 + 2 * edge] : 0.0; };
  const auto length = [&](size_t edge, double whole) {
    return strut.size() >= 12 ? strut[5 + 2 * edge] + 1.0 - begin(edge) : whole;
  };
  const double left = strut[0], right = strut[1], top = strut[2], bottom = strut[3];
  return {{0, begin(0), left, length(0, display.height)},
      {display.width - right, begin(1), right, length(1, display.height)},
      {begin(2), 0, length(2, display.width), top},
      {begin(3), display.height - bottom, length(3, display.width), bottom}};
}

/// `area` without the strip, which lies along one of its edges: `edge` as in `reservedStrips`.
Rect without(Rect area, const Rect& strip, size_t edge) {
  if (!area.intersects(strip)) return area;
  const double left = edge == 0 ? strip.right() : area.x, right = edge == 1 ? strip.x : area.right();
  const double top = edge == 2 ? strip.bottom() : area.y, bottom = edge == 3 ? strip.y : area.bottom();
  return {left, top, std::max(0.0, right - left), std::max(0.0, bottom - top)};
}

Rect intersection(const Rect& a, const Rect& b) {
  const double left = std::max(a.x, b.x), top = std::max(a.y, b.y);
  return {left, top, std::max(0.0, std::min(a.right(), b.right()) - left),
      std::max(0.0, std::min(a.bottom(), b.bottom()) - top)};
}

std::vector<Rect> rectangles(const std::optional<std::vector<uint32_t>>& numbers) {
  std::vector<Rect> result;
  for (size_t i = 0; numbers && i + 3 < numbers->size(); i += 4) {
    const auto& n = *numbers;
    result.push_back({double(n[i]), double(n[i + 1]), double(n[i + 2]), double(n[i + 3])});
  }
  return result;
}

}  // namespace

X11Screens::X11Screens(X11Connection& connection, Scheduler& scheduler)
    : connection_(connection), scheduler_(scheduler) {
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) {
    const uint8_t type = event.response_type & 0x7f;
    // The display's size, or that of a monitor, arrives as a change of the root window.
    if (type == XCB_CONFIGURE_NOTIFY) {
      if (reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == connection_.root())
        refreshSoon();
    } else if (type == XCB_PROPERTY_NOTIFY) {
      const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      for (const char* name : {"_NET_CLIENT_LIST", "_NET_WORKAREA", "_NET_CURRENT_DESKTOP", "_NET_WM_STRUT",
               "_NET_WM_STRUT_PARTIAL"}) {
        if (change.atom == connection_.atom(name)) return refreshSoon();
      }
    }
  });
  const auto watch = [this](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &context_, [this] { refreshSoon(); });
    QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &context_, [this] { refreshSoon(); });
    refreshSoon();
  };
  QObject::connect(qApp, &QGuiApplication::screenAdded, &context_, watch);
  QObject::connect(qApp, &QGuiApplication::screenRemoved, &context_, [this] { refreshSoon(); });
  QObject::connect(qApp, &QGuiApplication::primaryScreenChanged, &context_, [this] { refreshSoon(); });
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  refresh();
}

Rect X11Screens::Monitor::toPoints(const Rect& rect) const {
  return {pixels.x + (rect.x - pixels.x) / ratio, pixels.y + (rect.y - pixels.y) / ratio, rect.width / ratio,
      rect.height / ratio};
}

std::vector<Screen> X11Screens::all() const {
  std::vector<Screen> screens;
  for (const Monitor& monitor : monitors_) screens.push_back(monitor.screen);
  return screens;
}

Subscription X11Screens::observe(std::function<void()> onChange) {
  return changes_.observe(std::move(onChange));
}

void X11Screens::refreshSoon() {
  // Changes come in bursts; the toolkit must have seen them too, or it gives the ratios of before.
  refreshing_ = scheduler_.after(0.02, [this] {
    const std::vector<Screen> before = all();
    refresh();
    if (all() != before) changes_.notifyObservers();
  });
}

void X11Screens::refresh() {
  std::vector<Monitor> monitors = readMonitors();
  for (Monitor& monitor : monitors) monitor.screen.visibleFrame = monitor.pixels;
  subtractPanels(monitors);
  subtractWorkArea(monitors);
  for (Monitor& monitor : monitors) {
    monitor.screen.frame = monitor.toPoints(monitor.pixels);
    monitor.screen.visibleFrame = monitor.toPoints(monitor.screen.visibleFrame);
  }
  monitors_ = std::move(monitors);
}

std::vector<X11Screens::Monitor> X11Screens::readMonitors() const {
  std::vector<Monitor> monitors;
  const auto reply = owned(xcb_randr_get_monitors_reply(
      connection_, xcb_randr_get_monitors(connection_, connection_.root(), 1), nullptr));
  if (!reply) return monitors;
  const QList<QScreen*> toolkitScreens = QGuiApplication::screens();
  for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem;
       xcb_randr_monitor_info_next(&it)) {
    Monitor monitor;
    monitor.pixels = {
        double(it.data->x), double(it.data->y), double(it.data->width), double(it.data->height)};
    // Mirrored outputs are one screen.
    const auto same = [&](const Monitor& other) { return other.pixels == monitor.pixels; };
    if (std::any_of(monitors.begin(), monitors.end(), same)) continue;
    monitor.ratio = qApp->devicePixelRatio();
    for (const QScreen* screen : toolkitScreens) {
      const QPoint origin = screen->geometry().topLeft();
      if (origin == QPoint(it.data->x, it.data->y)) monitor.ratio = screen->devicePixelRatio();
    }
    monitors.insert(it.data->primary ? monitors.begin() : monitors.end(), monitor);
  }
  return monitors;
}

void X11Screens::subtractPanels(std::vector<Monitor>& monitors) {
  const auto clients =
      connection_.property(connection_.requestProperty(connection_.root(), "_NET_CLIENT_LIST"));
  if (!clients) return;
  struct Request {
    xcb_get_property_cookie_t partial, whole;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t place;
  };
  std::vector<Request> requests;
  for (const xcb_window_t window : *clients) {
    requests.push_back({connection_.requestProperty(window, "_NET_WM_STRUT_PARTIAL"),
        connection_.requestProperty(window, "_NET_WM_STRUT"), xcb_get_geometry(connection_, window),
        xcb_translate_coordinates(connection_, window, connection_.root(), 0, 0)});
  }
  Rect display;
  for (const Monitor& monitor : monitors) display = display.united(monitor.pixels);
  for (size_t i = 0; i < requests.size(); ++i) {
    auto strut = connection_.property(requests[i].partial);
    const auto simpleStrut = connection_.property(requests[i].whole);
    if (!strut) strut = simpleStrut;
    const auto geometry = owned(xcb_get_geometry_reply(connection_, requests[i].geometry, nullptr));
    const auto place = owned(xcb_translate_coordinates_reply(connection_, requests[i].place, nullptr));
    if (!strut || !geometry || !place) continue;
    // A panel may change what it reserves without coming or going.
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, (*clients)[i], XCB_CW_EVENT_MASK, &mask);

    const Rect panel{
        double(place->dst_x), double(place->dst_y), double(geometry->width), double(geometry->height)};
    const auto strips = reservedStrips(*strut, {display.right(), display.bottom()});
    for (Monitor& monitor : monitors) {
      // Between two monitors the strip reaches across the outer one, which the panel does not lie on.
      if (!monitor.pixels.intersects(panel)) continue;
      for (size_t edge = 0; edge < strips.size(); ++edge) {
        Rect& visible = monitor.screen.visibleFrame;
        visible = without(visible, strips[edge], edge);
      }
    }
  }
  xcb_flush(connection_);
}

void X11Screens::subtractWorkArea(std::vector<Monitor>& monitors) const {
  // Desktop shells whose panel is no window of its own tell through work areas only.
  const auto current =
      connection_.property(connection_.requestProperty(connection_.root(), "_NET_CURRENT_DESKTOP"));
  const uint32_t desktop = current && !current->empty() ? current->front() : 0;
  const std::string perMonitor = "_GTK_WORKAREAS_D" + std::to_string(desktop);
  auto areas =
      rectangles(connection_.property(connection_.requestProperty(connection_.root(), perMonitor.c_str())));
  if (areas.empty() && monitors.size() == 1) {
    // One area for all monitors together says nothing about one of several.
    const auto all =
        rectangles(connection_.property(connection_.requestProperty(connection_.root(), "_NET_WORKAREA")));
    if (desktop < all.size()) areas = {all[desktop]};
  }
  for (Monitor& monitor : monitors) {
    for (const Rect& area : areas) {
      if (!monitor.pixels.contains({area.midX(), area.midY()})) continue;
      monitor.screen.visibleFrame = intersection(monitor.screen.visibleFrame, area);
    }
  }
}

const X11Screens::Monitor& X11Screens::monitorAt(double xPixels, double yPixels) const {
  static const Monitor none;
  const Monitor* nearest = &none;
  double nearestDistance = std::numeric_limits<double>::infinity();
  for (const Monitor& monitor : monitors_) {
    const Rect& area = monitor.pixels;
    const double distance = std::hypot(xPixels - std::clamp(xPixels, area.x, area.right() - 1),
        yPixels - std::clamp(yPixels, area.y, area.bottom() - 1));
    if (distance < nearestDistance) {
      nearest = &monitor;
      nearestDistance = distance;
    }
  }
  return *nearest;
}

Point X11Screens::toPoints(double xPixels, double yPixels) const {
  return monitorAt(xPixels, yPixels).toPoints({xPixels, yPixels, 0, 0}).origin();
}

Rect X11Screens::toPoints(const Rect& pixels) const {
  return monitorAt(pixels.midX(), pixels.midY()).toPoints(pixels);
}

double X11Screens::ratioAt(const Rect& points) const {
  // A ratio shrinks a monitor towards its origin: no two of them overlap in points.
  for (const Monitor& monitor : monitors_) {
    if (monitor.screen.frame.contains({points.midX(), points.midY()})) return monitor.ratio;
  }
  return monitors_.empty() ? 1 : monitors_.front().ratio;
}

}  // namespace tarnwick
