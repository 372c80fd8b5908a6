#pragma once
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "base/Scheduler.h"
#include "linux/bus/BusWaiter.h"
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Notifications as signals on the session bus: "dev.tarnwick.event" is the signal `event` of the interface
/// `dev.tarnwick`, its payload one argument of type a{ss}. Without a bus nothing arrives; one that appears
/// later, or again, is picked up within a few seconds.
class DBusNotificationCenter : public QObject, public NotificationCenter {
  Q_OBJECT

 public:
  /// Connects, and asks for the name that marks the running overlay. Waits for the answer for half a second
  /// at most; when the bus takes longer, all that follows happens as soon as it answers.
  explicit DBusNotificationCenter(Scheduler& scheduler);
  ~DBusNotificationCenter() override;

  /// True when another process of this session has the name already, as far as the bus has answered.
  bool anotherOverlayRuns() const { return anotherOverlayRuns_; }
  /// The bus says so only later.
  std::function<void()> onAnotherOverlay;

  Subscription observe(const std::string& name, std::function<void(const StringMap&)> receive) override;

 private Q_SLOTS:
  void receive(const QDBusMessage& message);
  void disconnected();

 private:
  using Receiver = std::function<void(const StringMap&)>;

  struct Attempt;

  static std::shared_ptr<Attempt> nextAttempt();
  void awaitBus();
  void adopt(Attempt& attempt);
  void retryLater();
  void listen(const std::string& name);

  Scheduler& scheduler_;
  std::optional<QDBusConnection> bus_;
  bool anotherOverlayRuns_ = false;
  std::map<std::string, std::vector<std::weak_ptr<Receiver>>> receivers_;
  BusWaiter waiter_{scheduler_};
  Task connecting_, retry_;
};

}  // namespace tarnwick
