#include "platform/linux/DBusNotificationCenter.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace tarnwick {
namespace {

constexpr auto busName = "dev.tarnwick.Tarnwick";
constexpr auto signalPath = "/dev/tarnwick";
constexpr double retryInterval = 5;

/// The session bus's address. Never asks for a bus to be launched, as the library would if left to itself.
QString sessionBusAddress() {
  if (const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS"); !address.isEmpty()) {
    return QString::fromLocal8Bit(address);
  }
  const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
  return runtime.isEmpty() ? QString() : "unix:path=" + QString::fromLocal8Bit(runtime) + "/bus";
}

QDBusMessage nameRequest() {
  constexpr unsigned doNotQueue = 4;
  auto request = QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "RequestName");
  request << QString(busName) << doNotQueue;
  return request;
}

StringMap payload(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  if (message.signature() != "a{ss}") return {};
  const auto argument = arguments.first().value<QDBusArgument>();
  StringMap map;
  argument.beginMap();
  while (!argument.atEnd()) {
    QString key, value;
    argument.beginMapEntry();
    argument >> key >> value;
    argument.endMapEntry();
    map[key.toStdString()] = value.toStdString();
  }
  argument.endMap();
  return map;
}

}  // namespace

DBusNotificationCenter::DBusNotificationCenter(Scheduler& scheduler) : scheduler_(scheduler) {
  connectToBus();
}

DBusNotificationCenter::~DBusNotificationCenter() {
  if (bus_) QDBusConnection::disconnectFromBus(bus_->name());
}

void DBusNotificationCenter::connectToBus() {
  const QString address = sessionBusAddress();
  // A connection's name cannot be used again while the dead one is being taken apart.
  static int attempt = 0;
  const QString name = QString("tarnwick-%1").arg(++attempt);
  if (!address.isEmpty()) bus_ = QDBusConnection::connectToBus(address, name);
  if (!bus_ || !bus_->isConnected()) {
    if (bus_) QDBusConnection::disconnectFromBus(name);
    bus_.reset();
    if (!retry_) retry_ = scheduler_.every(retryInterval, [this] { connectToBus(); });
    return;
  }
  retry_.cancel();

  constexpr unsigned primaryOwner = 1, alreadyOwner = 4;
  const QDBusMessage reply = bus_->call(nameRequest());
  const unsigned result = reply.arguments().value(0).toUInt();
  anotherOverlayRuns_ =
      reply.type() == QDBusMessage::ReplyMessage && result != primaryOwner && result != alreadyOwner;

  bus_->connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", this,
                SLOT(disconnected()));
  for (const auto& [notification, receivers] : receivers_) listen(notification);
}

void DBusNotificationCenter::disconnected() {
  if (bus_) QDBusConnection::disconnectFromBus(bus_->name());
  bus_.reset();
  retry_ = scheduler_.every(retryInterval, [this] { connectToBus(); });
}

void DBusNotificationCenter::listen(const std::string& name) {
  if (!bus_) return;
  const size_t dot = name.rfind('.');
  bus_->connect(QString(), signalPath, QString::fromStdString(name.substr(0, dot)),
                QString::fromStdString(name.substr(dot + 1)), this, SLOT(receive(QDBusMessage)));
}

Subscription DBusNotificationCenter::observe(const std::string& name, Receiver receive) {
  auto receiver = std::make_shared<Receiver>(std::move(receive));
  auto& receivers = receivers_[name];
  if (receivers.empty()) listen(name);
  receivers.push_back(receiver);
  return Subscription(receiver);
}

void DBusNotificationCenter::receive(const QDBusMessage& message) {
  const auto entry = receivers_.find((message.interface() + '.' + message.member()).toStdString());
  if (entry == receivers_.end()) return;
  const StringMap map = payload(message);
  std::erase_if(entry->second, [](const auto& receiver) { return receiver.expired(); });
  const auto receivers = entry->second;  // a receiver may add or remove others
  for (const auto& weak : receivers) {
    if (const auto receiver = weak.lock()) (*receiver)(map);
  }
}

}  // namespace tarnwick
