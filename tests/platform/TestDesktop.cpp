#include "platform/TestDesktop.h"

#include <signal.h>
#include <sys/prctl.h>
#include <xcb/shape.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <algorithm>
#include <stdexcept>

namespace tarnwick {
namespace {

constexpr int patienceInMilliseconds = 30'000;

TestDesktop* existing = nullptr;

}  // namespace

bool waitUntil(const std::function<bool()>& condition) {
  QElapsedTimer clock;
  clock.start();
  // Not everything that a test waits for wakes this process.
  QTimer poll;
  poll.start(10);
  while (!condition()) {
    if (clock.elapsed() > patienceInMilliseconds) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  return true;
}

Child::Child(const QString& program, const QStringList& arguments) {
  process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  // A test that crashes leaves nobody behind.
  process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  process_.start(program, arguments);
  if (!process_.waitForStarted(patienceInMilliseconds)) {
    throw std::runtime_error("cannot start " + program.toStdString());
  }
}

Child::~Child() { kill(); }

void Child::kill() {
  process_.kill();
  process_.waitForFinished(patienceInMilliseconds);
}

std::string Child::waitForLine(const std::string& start) {
  std::string rest;
  const bool found = waitUntil([&] {
    while (process_.canReadLine()) {
      const std::string line = process_.readLine().trimmed().toStdString();
      if (!line.starts_with(start)) continue;
      rest = line.substr(start.size());
      return true;
    }
    return false;
  });
  return found ? rest : "(no line " + start + ")";
}

std::unique_ptr<Child> startMessageBus(const std::string& socket) {
  const QString path = QString::fromStdString(socket);
  QFile::remove(path);
  auto bus = std::make_unique<Child>(
      "dbus-daemon", QStringList{"--session", "--nofork", "--print-address", "--address=unix:path=" + path});
  bus->waitForLine("unix:");
  return bus;
}

TestDesktop& TestDesktop::shared() { return *existing; }

TestDesktop::TestDesktop() {
  existing = this;
  windowManager_ = std::make_unique<Child>("openbox", QStringList{"--sm-disable"});
  startBus();
  connection_ = X11Connection::open();
  if (!connection_) throw std::runtime_error("no display");
  connection_->start();
  screens_ = std::make_unique<X11Screens>(*connection_, scheduler);
  const bool managed = waitUntil([&] {
    return connection_->property(connection_->requestProperty(connection_->root(), "_NET_CLIENT_LIST"))
        .has_value();
  });
  if (!managed) throw std::runtime_error("no window manager");
}

void TestDesktop::startBus() {
  const std::string path = folder_.path() + "/bus";
  qputenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path).c_str());
  bus_ = startMessageBus(path);
}

void TestDesktop::restartBus() {
  bus_->kill();
  startBus();
}

QStringList TestDesktop::numbers(const QRect& place) {
  QStringList list;
  for (const int number : {place.x(), place.y(), place.width(), place.height()})
    list << QString::number(number);
  return list;
}

std::unique_ptr<Child> TestDesktop::startRole(const QStringList& arguments) {
  auto child = std::make_unique<Child>(QCoreApplication::applicationFilePath(), arguments);
  child->waitForLine("ready");
  return child;
}

std::unique_ptr<Child> TestDesktop::startCompositor() {
  return std::make_unique<Child>("picom", QStringList{"--backend", "xrender", "--config", "/dev/null"});
}

uint32_t TestDesktop::pixel(int x, int y) {
  X11Connection& c = *connection_;
  const auto image = owned(xcb_get_image_reply(c,
      xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, c.root(), static_cast<int16_t>(x), static_cast<int16_t>(y),
          1, 1, ~0u),
      nullptr));
  if (!image) throw std::runtime_error("no picture of the screen");
  return *reinterpret_cast<const uint32_t*>(xcb_get_image_data(image.get())) & 0xffffff;
}

xcb_window_t TestDesktop::focusedWindow() {
  X11Connection& c = *connection_;
  return owned(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr))->focus;
}

xcb_window_t TestDesktop::windowUnder(int x, int y) {
  X11Connection& c = *connection_;
  const auto cookie =
      xcb_translate_coordinates(c, c.root(), c.root(), static_cast<int16_t>(x), static_cast<int16_t>(y));
  return owned(xcb_translate_coordinates_reply(c, cookie, nullptr))->child;
}

std::vector<xcb_window_t> TestDesktop::stacking() {
  X11Connection& c = *connection_;
  const auto tree = owned(xcb_query_tree_reply(c, xcb_query_tree(c, c.root()), nullptr));
  const xcb_window_t* children = xcb_query_tree_children(tree.get());
  return {children, children + xcb_query_tree_children_length(tree.get())};
}

xcb_window_t TestDesktop::topLevel(xcb_window_t window) {
  X11Connection& c = *connection_;
  for (;;) {
    const auto tree = owned(xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr));
    if (!tree || tree->parent == c.root() || tree->parent == XCB_WINDOW_NONE) return window;
    window = tree->parent;
  }
}

xcb_window_t TestDesktop::findWindow(const std::string& title) {
  X11Connection& c = *connection_;
  auto candidates = c.property(c.requestProperty(c.root(), "_NET_CLIENT_LIST")).value_or(stacking());
  const auto onRoot = stacking();
  candidates.insert(candidates.end(), onRoot.begin(), onRoot.end());
  for (const xcb_window_t window : candidates) {
    const auto cookie = xcb_get_property(c, 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 100);
    const auto name = owned(xcb_get_property_reply(c, cookie, nullptr));
    if (!name) continue;
    const std::string text(static_cast<const char*>(xcb_get_property_value(name.get())),
        static_cast<size_t>(xcb_get_property_value_length(name.get())));
    if (text == title) return window;
  }
  return XCB_WINDOW_NONE;
}

xcb_window_t TestDesktop::awaitWindow(const std::string& title) {
  xcb_window_t window = XCB_WINDOW_NONE;
  waitUntil([&] { return (window = findWindow(title)) != XCB_WINDOW_NONE; });
  return window;
}

bool TestDesktop::isManaged(xcb_window_t window) {
  const auto clients =
      connection_->property(connection_->requestProperty(connection_->root(), "_NET_CLIENT_LIST"));
  return clients && std::find(clients->begin(), clients->end(), window) != clients->end();
}

void TestDesktop::changeState(xcb_window_t window, const char* state, bool on) {
  xcb_client_message_event_t message = {.response_type = XCB_CLIENT_MESSAGE, .format = 32, .window = window};
  message.type = connection_->atom("_NET_WM_STATE");
  message.data.data32[0] = on;
  message.data.data32[1] = connection_->atom(state);
  xcb_send_event(*connection_, 0, connection_->root(),
      XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
      reinterpret_cast<const char*>(&message));
  xcb_flush(*connection_);
}

std::optional<Rect> TestDesktop::shapeBounds(xcb_window_t window, uint8_t kind) {
  X11Connection& c = *connection_;
  const auto extents = owned(xcb_shape_query_extents_reply(c, xcb_shape_query_extents(c, window), nullptr));
  if (kind == XCB_SHAPE_SK_BOUNDING && extents && !extents->bounding_shaped) return std::nullopt;
  const auto reply =
      owned(xcb_shape_get_rectangles_reply(c, xcb_shape_get_rectangles(c, window, kind), nullptr));
  if (!reply) return std::nullopt;
  Rect bounds;
  const xcb_rectangle_t* rectangles = xcb_shape_get_rectangles_rectangles(reply.get());
  for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
    const xcb_rectangle_t& each = rectangles[i];
    bounds = bounds.united({double(each.x), double(each.y), double(each.width), double(each.height)});
  }
  return bounds;
}

}  // namespace tarnwick
