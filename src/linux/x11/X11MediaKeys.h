#pragma once
#include <memory>
#include <vector>

#include "base/Scheduler.h"
#include "linux/x11/X11Connection.h"
#include "platform/MediaKeys.h"

namespace tarnwick {

/// The special keys through passive grabs on the root window. X never passes a grabbed key on, whatever the
/// handler answers; a key that another program has grabbed cannot be had until that program lets go of it.
/// Under XWayland the compositor keeps these keys to itself.
class X11MediaKeys : public MediaKeys {
 public:
  X11MediaKeys(X11Connection& connection, Scheduler& scheduler);

  /// Grabbing is allowed to everybody: what counts is that the last attempt succeeded.
  bool isTrusted() const override { return trusted_; }
  /// Nobody can be asked: a program that has the keys does not give them away.
  void requestTrust() override {}
  std::optional<Subscription> tap(const std::vector<int>& codes, Handler handler) override;
  Subscription observe(std::function<void()> onMove) override { return moves_.observe(std::move(onMove)); }

 private:
  class Tap;
  struct Key {
    xcb_keycode_t keycode;
    int code;
  };

  std::vector<Key> keys(const std::vector<int>& codes) const;
  std::vector<std::shared_ptr<Tap>> liveTaps();
  void handle(const xcb_generic_event_t& event);

  X11Connection& connection_;
  Scheduler& scheduler_;
  bool trusted_ = false;
  std::vector<std::weak_ptr<Tap>> taps_;
  ObservableObject moves_;
  Task moved_;
  Subscription events_;
};

}  // namespace tarnwick
