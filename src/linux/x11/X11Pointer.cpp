#include "linux/x11/X11Pointer.h"

#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <QGuiApplication>
#include <algorithm>

#include "linux/files/FileList.h"

namespace tarnwick {
namespace {

constexpr const char* dragSelection = "XdndSelection";
constexpr uint16_t allMasterDevices = 1;
constexpr double askAgainInterval = 0.1;
constexpr int mostRefusals = 20;
/// The others are those of a wheel.
constexpr uint16_t buttons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;

void selectRawEvents(X11Connection& connection, uint32_t events) {
  struct {
    xcb_input_event_mask_t head;
    uint32_t mask;
  } selection{{allMasterDevices, 1}, events};
  xcb_input_xi_select_events(connection, connection.root(), 1, &selection.head);
  xcb_flush(connection);
}

/// A window that the toolkit has made for this program.
bool isOurs(xcb_window_t window) {
  const auto* toolkit = qApp->nativeInterface<QNativeInterface::QX11Application>();
  const xcb_setup_t* setup = xcb_get_setup(toolkit->connection());
  return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

}  // namespace

X11Pointer::X11Pointer(X11Connection& connection, const X11Screens& screens, Scheduler& scheduler)
    : connection_(connection),
      screens_(screens),
      scheduler_(scheduler),
      requestor_(xcb_generate_id(connection)) {
  xcb_create_window(connection_, 0, requestor_, connection_.root(), -1, -1, 1, 1, 0,
      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  if (connection_.xfixesEventBase()) {
    xcb_xfixes_select_selection_input(connection_, requestor_, connection_.atom(dragSelection),
        XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
  }
  xcb_flush(connection_);
  events_ = connection_.onEvent([this](const xcb_generic_event_t& event) { handle(event); });
}

X11Pointer::~X11Pointer() {
  setWantsActivity(false);
  xcb_destroy_window(connection_, requestor_);
  xcb_flush(connection_);
}

const X11Pointer::Query& X11Pointer::query() const {
  if (queryTurn_ == connection_.turn()) return query_;
  queryTurn_ = connection_.turn();
  const auto reply = owned(
      xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, connection_.root()), nullptr));
  query_ = {};
  if (reply) {
    query_ = {{double(reply->root_x), double(reply->root_y)}, (reply->mask & buttons) != 0,
        reply->child != XCB_WINDOW_NONE};
  }
  return query_;
}

std::optional<Point> X11Pointer::position() const {
  const Query& now = query();
  if (connection_.isXWayland() && !now.overWindow) return std::nullopt;
  return screens_.toPoints(now.pixels.x, now.pixels.y) - origin_;
}

bool X11Pointer::buttonDown() const { return query().buttonDown; }

Subscription X11Pointer::observe(std::function<void()> onActivity) {
  return activity_.observe(std::move(onActivity));
}

void X11Pointer::setWantsActivity(bool wants) {
  if (wants == wantsActivity_) return;
  wantsActivity_ = wants;
  // Who looks again now wants to see what nobody would have reported until now.
  queryTurn_.reset();
  // A mouse reports up to eight thousand times a second: not one of these comes while nobody waits for it.
  if (connection_.inputOpcode()) {
    selectRawEvents(connection_,
        wants ? XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                    XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN |
                    XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_END
              : 0);
  }
}

void X11Pointer::noteActivity() {
  if (wantsActivity_) activity_.notifyObservers();
}

void X11Pointer::handle(const xcb_generic_event_t& event) {
  const uint8_t type = event.response_type & 0x7f;
  if (type == XCB_GE_GENERIC) {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension == connection_.inputOpcode() && generic.event_type >= XCB_INPUT_RAW_KEY_PRESS) {
      noteActivity();
    }
  } else if (type == XCB_SELECTION_NOTIFY) {
    conversionArrived(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
  } else if (connection_.xfixesEventBase() &&
             type == connection_.xfixesEventBase() + XCB_XFIXES_SELECTION_NOTIFY) {
    const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    if (change.selection == connection_.atom(dragSelection) && change.owner != XCB_WINDOW_NONE &&
        !isOurs(change.owner)) {
      dragStarted(change.selection_timestamp);
    }
  }
}

void X11Pointer::dragStarted(xcb_timestamp_t timestamp) {
  ++dragChangeCount_;
  dragTypes_.reset();
  dragTimestamp_ = timestamp;
  refusals_ = 0;
  asked_.clear();
  askingAgain_.cancel();
  askForFiles({timestamp});
  noteActivity();
}

/// Lists of types are unreliable, and some sources have none: only one that hands files out has some.
void X11Pointer::askForFiles(std::vector<xcb_timestamp_t> times) {
  const xcb_atom_t type = connection_.atom(fileListType);
  for (const xcb_timestamp_t time : times) {
    xcb_convert_selection(connection_, requestor_, connection_.atom(dragSelection), type, type, time);
  }
  asked_.insert(asked_.end(), times.begin(), times.end());
  xcb_flush(connection_);
}

void X11Pointer::conversionArrived(const xcb_selection_notify_event_t& event) {
  const auto asked = std::find(asked_.begin(), asked_.end(), event.time);
  if (event.requestor != requestor_ || asked == asked_.end()) return;
  asked_.erase(asked);
  if (event.property != XCB_ATOM_NONE) {
    asked_.clear();
    dragTypes_.emplace();
    if (holdsFiles(event.property)) dragTypes_->push_back(fileListType);
    return noteActivity();
  }
  if (!asked_.empty()) return;
  if (++refusals_ > mostRefusals) {
    dragTypes_.emplace();
  } else {
    askingAgain_ = scheduler_.after(askAgainInterval, [this] { askAgain(); });
  }
}

/// Some sources refuse whoever does not ask at the very time of their last message to the window below the
/// pointer: when they handled a motion, or no time at all before the first one.
void X11Pointer::askAgain() {
  // A source that is slow has handled none of the last motions yet: now and then it is asked about many.
  const size_t mostTimes = refusals_ % 5 == 0 ? 64 : 4;
  queryTurn_.reset();
  if (!buttonDown()) return;
  const auto reply = owned(xcb_get_motion_events_reply(connection_,
      xcb_get_motion_events(connection_, connection_.root(), dragTimestamp_, XCB_CURRENT_TIME), nullptr));
  std::vector<xcb_timestamp_t> times{XCB_CURRENT_TIME};
  const xcb_timecoord_t* motions = reply ? xcb_get_motion_events_events(reply.get()) : nullptr;
  for (int i = reply ? xcb_get_motion_events_events_length(reply.get()) : 0; i > 0; --i) {
    const xcb_timestamp_t time = motions[i - 1].time;
    if (std::find(times.begin(), times.end(), time) == times.end()) times.push_back(time);
    if (times.size() > mostTimes) break;
  }
  askForFiles(std::move(times));
}

bool X11Pointer::holdsFiles(xcb_atom_t property) const {
  constexpr uint32_t limit = 65536;  // in units of four bytes; enough to see whether there is a file
  const auto reply = owned(xcb_get_property_reply(connection_,
      xcb_get_property(connection_, 0, requestor_, property, XCB_GET_PROPERTY_TYPE_ANY, 0, limit), nullptr));
  if (!reply) return false;
  // Announced as too long for one piece: no link is that long. Deleting the property would ask for the
  // pieces.
  if (reply->format == 32) return true;
  xcb_delete_property(connection_, requestor_, property);
  xcb_flush(connection_);
  return !filesOfUriList(
      {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<size_t>(xcb_get_property_value_length(reply.get()))})
              .empty();
}

}  // namespace tarnwick
