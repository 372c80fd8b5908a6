#pragma once
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string>

#include "base/Backoff.h"
#include "base/Scheduler.h"
#include "dbus/BusConnection.h"

namespace tarnwick {

/// Waits, without holding anything up, until a bus answers. The D-Bus library may be let at it only then: it
/// waits on the thread that all its connections share, and one that is silent would silence the others.
class BusWaiter {
 public:
  /// @param retrySeconds see `Backoff`
  explicit BusWaiter(Scheduler& scheduler, double retrySeconds = 5)
      : scheduler_(scheduler), backoff_(scheduler, retrySeconds) {}

  /// Calls `then` once, in a later turn of the loop, when the bus at that address answers. One that is not
  /// there is looked for again and again. Replaces an earlier wait.
  void wait(std::function<std::string()> address, std::function<void()> then);

 private:
  void look();
  void proceed();
  void answered();

  Scheduler& scheduler_;
  std::function<std::string()> address_;
  std::function<void()> then_;
  std::unique_ptr<BusConnection> probe_;
  std::unique_ptr<QSocketNotifier> notifier_;
  Backoff backoff_;
  Task answer_;
};

}  // namespace tarnwick
