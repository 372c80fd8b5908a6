#pragma once
#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// Waits until another program lets go of a key that it has grabbed, or disconnects from the server and so
/// from all that it had grabbed. The recording extension tells of such requests, and of nothing else here.
class X11ReleaseWatch {
 public:
  /// What is released after the constructor has returned is told by calling `onRelease`, once.
  /// @param own whose own requests do not count
  X11ReleaseWatch(const X11Connection& own, std::function<void()> onRelease);
  ~X11ReleaseWatch();
  X11ReleaseWatch(const X11ReleaseWatch&) = delete;
  X11ReleaseWatch& operator=(const X11ReleaseWatch&) = delete;

  /// False where the server does not tell.
  bool isActive() const { return notifier_ != nullptr; }

 private:
  void read();

  /// Of its own: what is recorded comes as replies to one request that does not end.
  xcb_connection_t* connection_;
  unsigned request_ = 0;
  uint32_t ownClient_;
  std::function<void()> onRelease_;
  QObject context_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tarnwick
