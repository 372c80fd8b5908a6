#include "linux/bus/RemoteProperties.h"

#include <QDBusArgument>

namespace tarnwick {
namespace {

constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

}  // namespace

RemoteProperties::RemoteProperties(
    MessageBus& bus, const QString& service, QString path, QString interface, bool starts)
    : path_(std::move(path)), interface_(std::move(interface)), service_(bus, service, starts) {
  service_.listen(path_, propertiesInterface, "PropertiesChanged", interface_);
  service_.onAppear = [this] { fetch(); };
  service_.onVanish = [this] { adopt({}); };
  service_.onSignal = [this](const QDBusMessage& signal) { receive(signal); };
  service_.follow();
}

void RemoteProperties::fetch() {
  service_.call(path_, propertiesInterface, "GetAll", {interface_},
      [this](const QDBusMessage& reply) { adopt(qdbus_cast<QVariantMap>(reply.arguments().value(0))); });
}

void RemoteProperties::receive(const QDBusMessage& signal) {
  const QVariantList arguments = signal.arguments();
  const bool incomplete = values_.isEmpty() || !qdbus_cast<QStringList>(arguments.value(2)).isEmpty();
  if (incomplete) return fetch();
  QVariantMap values = values_;
  values.insert(qdbus_cast<QVariantMap>(arguments.value(1)));
  adopt(std::move(values));
}

void RemoteProperties::adopt(QVariantMap values) {
  if (values == values_) return;
  values_ = std::move(values);
  if (onChange) onChange();
}

}  // namespace tarnwick
