#pragma once
#include <QDBusMessage>
#include <QObject>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "linux/bus/MessageBus.h"
#include "platform/NotificationCenter.h"

namespace tarnwick {

/// Notifications as signals on the session bus: "dev.tarnwick.event" is the signal `event` of the interface
/// `dev.tarnwick`, its payload one argument of type a{ss}; one that is larger than any of ours counts as of
/// another shape. A flood of them takes at most half of the time. Without a bus nothing arrives; one that
/// appears later, or again, is picked up.
class DBusNotificationCenter : public QObject, public NotificationCenter {
  Q_OBJECT

 public:
  /// Opens the session's bus, and asks for the name that marks the running overlay. Waits for the bus for
  /// half a second at most; when it takes longer, all that follows happens as soon as it answers.
  DBusNotificationCenter(Scheduler& scheduler, MessageBus& bus);

  /// True when another process of this session has the name already, as far as the bus has answered.
  bool anotherOverlayRuns() const { return anotherOverlayRuns_; }
  /// The bus says so only later.
  std::function<void()> onAnotherOverlay;

  /// Sends a notification, and waits half a second at most for the bus to take it.
  void post(const std::string& name, const StringMap& payload);

  /// Delivers a notification that came another way than by the bus.
  void receive(const std::string& name, StringMap payload);
  /// Has something else that came in wait for its turn. @param length how much of the memory that
  /// may wait it takes, in bytes
  /// @return false when too much waits already
  bool enqueue(size_t length, std::function<void()> deliver);

  Subscription observe(const std::string& name, std::function<void(const StringMap&)> receive) override;

 private Q_SLOTS:
  void receive(const QDBusMessage& message);

 private:
  using Receiver = std::function<void(const StringMap&)>;

  void opened();
  void nameAnswered(const QDBusMessage& reply);
  void listen();
  void deliverWaiting();
  void deliver(const std::string& name, const StringMap& payload);

  Scheduler& scheduler_;
  MessageBus& bus_;
  bool anotherOverlayRuns_ = false;
  std::map<std::string, std::vector<std::weak_ptr<Receiver>>> receivers_;

  struct Received {
    std::function<void()> deliver;
    size_t length;
  };
  /// What waits for its turn, and how long all of it is.
  std::deque<Received> waiting_;
  size_t waitingLength_ = 0;
  /// When the present frame began, and how much of it went into receivers.
  double frameStart_ = 0, spent_ = 0;
  Task pause_;
};

}  // namespace tarnwick
