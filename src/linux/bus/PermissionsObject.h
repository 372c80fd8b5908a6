#pragma once
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <map>
#include <optional>

#include "linux/bus/DBusNotificationCenter.h"
#include "platform/PermissionRequests.h"

namespace tarnwick {

/// Permissions that are asked for over the session's bus: the object /dev/tarnwick/permissions with the
/// method `Ask` of the interface `dev.tarnwick`. Its argument is a hook event, of type a{ss}, with what the
/// tool would be called with. It is answered when the user has answered, by "allow", "deny" or an empty
/// string, and by a second string, the reason. Whoever leaves the bus before that waits no more.
class PermissionsObject : public QObject, public PermissionRequests {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "dev.tarnwick")

 public:
  /// To be made before the bus is opened. Both arguments must outlive it; `notifications` may be made later.
  PermissionsObject(MessageBus& bus, DBusNotificationCenter& notifications);

  Subscription observe(std::function<void(const Request&)> asked) override;
  Subscription observeEnd(std::function<void(uint64_t)> gone) override;
  void answer(uint64_t number, const PermissionAnswer& answer) override;

 public Q_SLOTS:
  Q_SCRIPTABLE void Ask(const QDBusMessage& call);

 private:
  using Asked = std::function<void(const Request&)>;
  using Gone = std::function<void(uint64_t)>;

  void ask(uint64_t number, const StringMap& event);
  void forgetCaller(const QString& name);
  void forget(const std::function<bool(const QDBusMessage&)>& isGone);

  MessageBus& bus_;
  DBusNotificationCenter& notifications_;
  std::weak_ptr<Asked> asked_;
  std::weak_ptr<Gone> gone_;
  uint64_t last_ = 0;
  /// The calls that wait for their answers.
  std::map<uint64_t, QDBusMessage> calls_;
  std::optional<QDBusServiceWatcher> callers_;
};

}  // namespace tarnwick
