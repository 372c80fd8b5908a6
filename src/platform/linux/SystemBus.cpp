#include "platform/linux/SystemBus.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tarnwick {
namespace {

constexpr double retryInterval = 10;

QString systemBusAddress() {
  const QByteArray address = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
  return address.isEmpty() ? "unix:path=/var/run/dbus/system_bus_socket" : QString::fromLocal8Bit(address);
}

}  // namespace

SystemBus::~SystemBus() { close(); }

void SystemBus::open() {
  // A connection's name cannot be used again while the dead one is being taken apart.
  static int attempt = 0;
  const QString name = QString("tarnwick-system-%1").arg(++attempt);
  // Whatever becomes of this object meanwhile, a connection that nobody takes is closed.
  const std::shared_ptr<std::optional<QDBusConnection>> made(
      new std::optional<QDBusConnection>, [name](std::optional<QDBusConnection>* connection) {
        if (*connection) QDBusConnection::disconnectFromBus(name);
        delete connection;
      });
  connecting_ = scheduler_.background(
      [name, address = systemBusAddress(), made] { *made = QDBusConnection::connectToBus(address, name); },
      [this, made] {
        if (!*made || !(*made)->isConnected()) {
          if (!retry_) retry_ = scheduler_.every(retryInterval, [this] { open(); });
          return;
        }
        retry_.cancel();
        connection_ = std::exchange(*made, std::nullopt);
        connection_->connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local",
                             "Disconnected", this, SLOT(disconnected()));
        Q_EMIT opened();
      });
}

void SystemBus::disconnected() {
  close();
  Q_EMIT lost();
  retry_ = scheduler_.every(retryInterval, [this] { open(); });
}

void SystemBus::close() {
  if (connection_) QDBusConnection::disconnectFromBus(connection_->name());
  connection_.reset();
}

SystemService::SystemService(SystemBus& bus, QString name, bool starts)
    : bus_(bus), name_(std::move(name)), starts_(starts) {
  connect(&bus, &SystemBus::opened, this, &SystemService::busOpened);
  connect(&bus, &SystemBus::lost, this, [this] { onVanish(); });
}

void SystemService::listen(const QString& path, const QString& interface, const QString& member,
                           const QString& firstArgument) {
  matches_.push_back(
      {path, interface, member, firstArgument.isEmpty() ? QStringList() : QStringList{firstArgument}});
}

void SystemService::busOpened() {
  QDBusConnection& connection = *bus_.connection();
  connection.connect("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "NameOwnerChanged", {name_}, "sss", this, SLOT(ownerChanged(QString, QString, QString)));
  for (const Match& match : matches_) {
    connection.connect(name_, match.path, match.interface, match.member, match.arguments, QString(), this,
                       SLOT(received(QDBusMessage)));
  }
  onAppear();
}

void SystemService::ownerChanged(const QString&, const QString& before, const QString& now) {
  if (!before.isEmpty()) onVanish();
  if (!now.isEmpty()) onAppear();
}

void SystemService::received(const QDBusMessage& message) { onSignal(message); }

void SystemService::call(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& arguments, Reply then) {
  if (!bus_.connection()) return;
  QDBusMessage message = QDBusMessage::createMethodCall(name_, path, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(starts_);
  auto* watcher = new QDBusPendingCallWatcher(bus_.connection()->asyncCall(message), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, then = std::move(then)] {
    watcher->deleteLater();
    if (!watcher->isError()) then(watcher->reply());
  });
}

}  // namespace tarnwick
