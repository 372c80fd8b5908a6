#include "linux/x11/X11Connection.h"

#include <xcb/randr.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <QAbstractEventDispatcher>
#include <cstring>
#include <string_view>

namespace tarnwick {
namespace {

/// Asked for together at the start: each one asked for later would wait for the server.
constexpr const char* knownAtoms[] = {
    "_NET_ACTIVE_WINDOW",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_CURRENT_DESKTOP",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_WM_DESKTOP",
    "_NET_WM_PID",
    "_NET_WM_STATE",
    "_NET_WM_STATE_FULLSCREEN",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_MAXIMIZED_HORZ",
    "_NET_WM_STATE_MAXIMIZED_VERT",
    "_NET_WM_STRUT",
    "_NET_WM_STRUT_PARTIAL",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WORKAREA",

    "XdndSelection",
    "text/uri-list",
};

constexpr uint32_t propertyLimit = 4096;

bool extensionPresent(xcb_connection_t* connection, xcb_extension_t& extension, uint8_t* firstEvent) {
  const xcb_query_extension_reply_t* reply = xcb_get_extension_data(connection, &extension);
  if (reply && firstEvent) *firstEvent = reply->first_event;
  return reply && reply->present;
}

}  // namespace

std::unique_ptr<X11Connection> X11Connection::open() {
  int screenNumber = 0;
  xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(connection)) {
    xcb_disconnect(connection);
    return nullptr;
  }
  return std::unique_ptr<X11Connection>(new X11Connection(connection, screenNumber));
}

X11Connection::X11Connection(xcb_connection_t* connection, int screenNumber)
    : connection_(connection), screenNumber_(screenNumber) {
  for (xcb_extension_t* extension : {&xcb_xfixes_id, &xcb_randr_id, &xcb_input_id}) {
    xcb_prefetch_extension_data(connection_, extension);
  }
  std::vector<xcb_intern_atom_cookie_t> cookies;
  for (const char* name : knownAtoms) {
    cookies.push_back(xcb_intern_atom(connection_, 0, static_cast<uint16_t>(std::strlen(name)), name));
  }

  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
  for (int i = 0; i < screenNumber_ && screens.rem > 1; ++i) xcb_screen_next(&screens);
  root_ = screens.data->root;
  const uint32_t events =
      XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);

  // The server refuses requests of an extension until it has been told which version is spoken.
  if (extensionPresent(connection_, xcb_xfixes_id, &xfixesEventBase_)) {
    xcb_discard_reply(connection_, xcb_xfixes_query_version(connection_, 5, 0).sequence);
  }
  if (extensionPresent(connection_, xcb_randr_id, nullptr)) {
    xcb_discard_reply(connection_, xcb_randr_query_version(connection_, 1, 5).sequence);
  }
  if (extensionPresent(connection_, xcb_input_id, nullptr)) {
    const auto cookie = xcb_input_xi_query_version(connection_, 2, 2);
    const auto reply = owned(xcb_input_xi_query_version_reply(connection_, cookie, nullptr));
    if (reply && (reply->major_version > 2 || reply->minor_version >= 2)) {
      inputOpcode_ = xcb_get_extension_data(connection_, &xcb_input_id)->major_opcode;
    }
  }
  for (size_t i = 0; i < cookies.size(); ++i) {
    const auto reply = owned(xcb_intern_atom_reply(connection_, cookies[i], nullptr));
    atoms_[knownAtoms[i]] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }
  isXWayland_ = detectXWayland();
}

X11Connection::~X11Connection() { xcb_disconnect(connection_); }

bool X11Connection::detectXWayland() const {
  constexpr std::string_view name = "XWAYLAND";
  const auto extension = owned(xcb_query_extension_reply(
      connection_, xcb_query_extension(connection_, name.size(), name.data()), nullptr));
  if (extension && extension->present) return true;
  // Older servers lack the extension, but name their outputs so.
  const auto resources = owned(xcb_randr_get_screen_resources_current_reply(
      connection_, xcb_randr_get_screen_resources_current(connection_, root_), nullptr));
  if (!resources || xcb_randr_get_screen_resources_current_outputs_length(resources.get()) == 0) return false;
  const xcb_randr_output_t output = *xcb_randr_get_screen_resources_current_outputs(resources.get());
  const auto info = owned(xcb_randr_get_output_info_reply(
      connection_, xcb_randr_get_output_info(connection_, output, XCB_CURRENT_TIME), nullptr));
  if (!info) return false;
  const auto* text = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
  const int length = xcb_randr_get_output_info_name_length(info.get());
  return std::string_view(text, static_cast<size_t>(length)).starts_with(name);
}

void X11Connection::start() {
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, &context_, [this] { dispatch(true); });
  const QAbstractEventDispatcher* loop = QAbstractEventDispatcher::instance();
  // Waiting for a reply takes events off the socket too: nothing would wake the loop for those.
  QObject::connect(loop, &QAbstractEventDispatcher::aboutToBlock, &context_, [this] { dispatch(false); });
  QObject::connect(loop, &QAbstractEventDispatcher::awake, &context_, [this] { ++turn_; });
  xcb_flush(connection_);
}

void X11Connection::dispatch(bool readSocket) {
  ++turn_;
  const auto next = readSocket ? xcb_poll_for_event : xcb_poll_for_queued_event;
  while (const auto event = owned(next(connection_))) {
    if (event->response_type == 0) continue;  // an error: its window has gone in the meantime
    for (size_t i = 0; i < handlers_.size(); ++i) {
      if (const auto handler = handlers_[i].lock()) (*handler)(*event);
    }
  }
  std::erase_if(handlers_, [](const auto& handler) { return handler.expired(); });
  // A server that has gone away would leave the socket readable for ever.
  if (notifier_ && xcb_connection_has_error(connection_)) notifier_->setEnabled(false);
}

Subscription X11Connection::onEvent(Handler handler) {
  auto shared = std::make_shared<Handler>(std::move(handler));
  handlers_.push_back(shared);
  return Subscription(shared);
}

xcb_atom_t X11Connection::atom(const std::string& name) const {
  if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
  const auto cookie = xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.data());
  const auto reply = owned(xcb_intern_atom_reply(connection_, cookie, nullptr));
  return atoms_[name] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_get_property_cookie_t X11Connection::requestProperty(xcb_window_t window, const char* name) const {
  return xcb_get_property(connection_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, propertyLimit);
}

std::optional<std::vector<uint32_t>> X11Connection::property(xcb_get_property_cookie_t cookie) const {
  const auto reply = owned(xcb_get_property_reply(connection_, cookie, nullptr));
  if (!reply || reply->type == XCB_ATOM_NONE || reply->format != 32) return std::nullopt;
  const auto* items = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
  return std::vector<uint32_t>(items, items + xcb_get_property_value_length(reply.get()) / 4);
}

}  // namespace tarnwick
