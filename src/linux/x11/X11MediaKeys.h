#pragma once
#include <memory>
#include <vector>

#include "base/Scheduler.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11ReleaseWatch.h"
#include "platform/MediaKeys.h"

namespace tarnwick {

/// The special keys through passive grabs on the root window. X never passes a grabbed key on, whatever the
/// handler answers; a key that another program has grabbed cannot be had until that program lets go of it or
/// ends. Under XWayland the compositor keeps these keys to itself.
class X11MediaKeys : public MediaKeys {
 public:
  X11MediaKeys(X11Connection& connection, Scheduler& scheduler);

  /// Grabbing is allowed to everybody: what counts is that nobody else has the keys.
  bool isTrusted(const std::vector<MediaKey>& keys) override;
  /// Nobody can be asked: a program that has the keys does not give them away.
  void requestTrust() override {}
  std::optional<Subscription> tap(const std::vector<MediaKey>& keys, Handler handler) override;
  Subscription observe(std::function<void()> onChange) override {
    return changes_.observe(std::move(onChange));
  }

 private:
  class Tap;
  struct Key {
    xcb_keycode_t keycode;
    MediaKey meaning;
  };

  std::vector<Key> locate(const std::vector<MediaKey>& keys) const;
  std::vector<std::shared_ptr<Tap>> liveTaps();
  void watchForRelease();
  void tellChangeIn(double seconds);
  void handle(const xcb_generic_event_t& event);

  X11Connection& connection_;
  Scheduler& scheduler_;
  std::vector<std::weak_ptr<Tap>> taps_;
  std::unique_ptr<X11ReleaseWatch> releaseWatch_;
  ObservableObject changes_;
  Task telling_;
  Subscription events_;
};

}  // namespace tarnwick
