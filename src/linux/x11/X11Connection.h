#pragma once
#include <xcb/xcb.h>

#include <QObject>
#include <QSocketNotifier>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/ObservableObject.h"

namespace tarnwick {

/// A reply or event of the X server; freed with the handle.
template<typename T>
struct XFree {
  void operator()(T* memory) const { std::free(memory); }
};
template<typename T>
using XOwned = std::unique_ptr<T, XFree<T>>;
template<typename T>
XOwned<T> owned(T* memory) {
  return XOwned<T>(memory);
}

/// A connection to the X server beside the toolkit's: event selections on the root window are per connection,
/// and waiting for a reply here never holds up the toolkit's traffic. It watches the root window's
/// properties, its size, and the stacking of the windows on it.
class X11Connection {
 public:
  /// None when there is no display to connect to.
  static std::unique_ptr<X11Connection> open();
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  /// Begins to deliver events; the application object must exist.
  void start();

  operator xcb_connection_t*() const { return connection_; }
  xcb_window_t root() const { return root_; }
  int screenNumber() const { return screenNumber_; }
  /// The server serves X programs in a Wayland session: it sees the pointer only over X windows.
  bool isXWayland() const { return isXWayland_; }
  xcb_atom_t atom(const std::string& name) const;

  uint8_t xfixesEventBase() const { return xfixesEventBase_; }
  /// Major opcode of the input extension, by which its events are known; none without version 2.2 of it.
  std::optional<uint8_t> inputOpcode() const { return inputOpcode_; }

  /// Differs in each turn of the event loop: what was read from the server holds for one turn.
  uint64_t turn() const { return turn_; }

  using Handler = std::function<void(const xcb_generic_event_t&)>;
  /// Calls `handler` with every event of this connection.
  Subscription onEvent(Handler handler);

  /// A property of 32-bit items, up to 4096 of them; empty when it is missing. For several at once send all
  /// the requests before reading the first reply.
  xcb_get_property_cookie_t requestProperty(xcb_window_t window, const char* name) const;
  std::optional<std::vector<uint32_t>> property(xcb_get_property_cookie_t cookie) const;

 private:
  X11Connection(xcb_connection_t* connection, int screenNumber);
  bool detectXWayland() const;
  void dispatch(bool readSocket);

  xcb_connection_t* connection_;
  int screenNumber_;
  xcb_window_t root_;
  uint8_t xfixesEventBase_ = 0;
  std::optional<uint8_t> inputOpcode_;
  bool isXWayland_ = false;
  mutable std::map<std::string, xcb_atom_t> atoms_;
  uint64_t turn_ = 0;
  std::vector<std::weak_ptr<Handler>> handlers_;
  std::unique_ptr<QSocketNotifier> notifier_;
  QObject context_;
};

}  // namespace tarnwick
