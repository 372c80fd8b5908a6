#pragma once
#include <QProcess>
#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <string>

#include "base/Geometry.h"
#include "linux/process/QtScheduler.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Screens.h"
#include "platform/Hands.h"
#include "support/TemporaryFolder.h"

namespace tarnwick {

/// Runs the event loop until `condition` holds. @return false when it did not within half a minute.
bool waitUntil(const std::function<bool()>& condition);

/// A program of the test's own that ends with this object.
class Child {
 public:
  Child(const QString& program, const QStringList& arguments);
  ~Child();

  int64_t id() const { return process_.processId(); }
  /// Waits for a line that begins with `start`. @return the rest of it
  std::string waitForLine(const std::string& start);
  void kill();

 private:
  QProcess process_;
};

/// A message bus that listens on that socket.
std::unique_ptr<Child> startMessageBus(const std::string& socket);

/// The desktop that all tests of this program share: an X server with two monitors, a window manager, and a
/// session bus, all of their own.
///
/// left: 1000 × 800 pixels at (0, 0), ratio 1, the primary one. right: 800 × 600 at (1000, 200), ratio 2.
class TestDesktop {
 public:
  /// On the display of the environment, which has the two monitors already.
  TestDesktop();
  /// The one that exists.
  static TestDesktop& shared();

  /// Starts this test program in another role (see Roles.h), and waits until its window is on the screen.
  std::unique_ptr<Child> startRole(const QStringList& arguments);
  std::unique_ptr<Child> startWindow(const QString& title, const QRect& place, const QStringList& more = {}) {
    return startRole(QStringList{"--window", title} + numbers(place) + more);
  }
  std::unique_ptr<Child> startUnmanaged(const QString& title, const QRect& place) {
    return startRole(QStringList{"--unmanaged", title} + numbers(place));
  }
  /// A compositor, until the object ends.
  std::unique_ptr<Child> startCompositor();

  QtScheduler scheduler;
  X11Connection& connection() { return *connection_; }
  X11Screens& screens() { return *screens_; }

  Hands hands;

  // What the server says.
  /// 0xRRGGBB
  uint32_t pixel(int x, int y);
  xcb_window_t focusedWindow();
  xcb_window_t windowUnder(int x, int y);
  /// Bottom to top.
  std::vector<xcb_window_t> stacking();
  /// The child of the root window that holds `window`.
  xcb_window_t topLevel(xcb_window_t window);
  /// The window of that title, once it has got it.
  xcb_window_t awaitWindow(const std::string& title);
  /// The window manager has taken the window over, and it is still there.
  bool isManaged(xcb_window_t window);
  /// The union of a window's shape, in pixels relative to it; none when it is not shaped.
  std::optional<Rect> shapeBounds(xcb_window_t window, uint8_t kind);

  /// Asks the window manager to give a window that state, or to take it.
  void changeState(xcb_window_t window, const char* state, bool on);

  int64_t busProcess() const { return bus_->id(); }
  /// Wakes the session bus from the dead, at the same address.
  void restartBus();

 private:
  xcb_window_t findWindow(const std::string& title);
  static QStringList numbers(const QRect& place);
  void startBus();

  TemporaryFolder folder_;
  std::unique_ptr<Child> windowManager_, bus_;
  std::unique_ptr<X11Connection> connection_;
  std::unique_ptr<X11Screens> screens_;
};

}  // namespace tarnwick
