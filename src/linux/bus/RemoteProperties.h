#pragma once
#include <QVariantMap>
#include <functional>

#include "linux/bus/MessageBus.h"

namespace tarnwick {

/// The properties of one interface of an object on the system bus, as they are now.
class RemoteProperties {
 public:
  /// @param starts the service is started when it does not run
  RemoteProperties(MessageBus& bus, const QString& service, QString path, QString interface, bool starts);

  /// Empty while the service is not there or has not answered yet.
  const QVariantMap& values() const { return values_; }
  /// Called when a value differs from before.
  std::function<void()> onChange;

 private:
  void fetch();
  void receive(const QDBusMessage& signal);
  void adopt(QVariantMap values);

  const QString path_, interface_;
  BusService service_;
  QVariantMap values_;
};

}  // namespace tarnwick
