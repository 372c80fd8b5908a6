#pragma once
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "base/Scheduler.h"
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Notifications as signals on the session bus: "dev.tarnwick.event" is the signal `event` of the interface
/// `dev.tarnwick`, its payload one argument of type a{ss}. Without a bus nothing arrives; one that appears
/// later, or again, is picked up within a few seconds.
class DBusNotificationCenter : public QObject, public NotificationCenter {
  Q_OBJECT

 public:
  /// Connects, and asks for the name that marks the running overlay.
  explicit DBusNotificationCenter(Scheduler& scheduler);
  ~DBusNotificationCenter() override;

  /// True when another process of this session has the name already.
  bool anotherOverlayRuns() const { return anotherOverlayRuns_; }

  Subscription observe(const std::string& name, std::function<void(const StringMap&)> receive) override;

 private Q_SLOTS:
  void receive(const QDBusMessage& message);
  void disconnected();

 private:
  using Receiver = std::function<void(const StringMap&)>;

  void connectToBus();
  void listen(const std::string& name);

  Scheduler& scheduler_;
  std::optional<QDBusConnection> bus_;
  bool anotherOverlayRuns_ = false;
  std::map<std::string, std::vector<std::weak_ptr<Receiver>>> receivers_;
  Task retry_;
};

}  // namespace tarnwick
