#include "linux/bus/MessageBus.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tarnwick {
namespace {

constexpr double retryInterval = 5;

}  // namespace

std::string systemBusAddress() {
  const std::string_view address = environment("DBUS_SYSTEM_BUS_ADDRESS");
  return std::string(address.empty() ? "unix:path=/var/run/dbus/system_bus_socket" : address);
}

MessageBus::~MessageBus() { close(); }

void MessageBus::open() {
  waiter_.wait(address_, [this] { connect(); });
}

void MessageBus::openLater() {
  retry_ = scheduler_.after(retryInterval, [this] { open(); });
}

void MessageBus::connect() {
  // A connection's name cannot be used again while the dead one is being taken apart.
  static int attempt = 0;
  const QString name = QString("tarnwick-services-%1").arg(++attempt);
  // Whatever becomes of this object meanwhile, a connection that nobody takes is closed.
  const std::shared_ptr<std::optional<QDBusConnection>> made(
      new std::optional<QDBusConnection>, [name](std::optional<QDBusConnection>* connection) {
        if (*connection) QDBusConnection::disconnectFromBus(name);
        delete connection;
      });
  connecting_ = scheduler_.background([name, address = QString::fromStdString(address_()),
                                       made] { *made = QDBusConnection::connectToBus(address, name); },
                                      [this, made] {
                                        if (!*made || !(*made)->isConnected()) return openLater();
                                        connection_ = std::exchange(*made, std::nullopt);
                                        connection_->connect(QString(), "/org/freedesktop/DBus/Local",
                                                             "org.freedesktop.DBus.Local", "Disconnected",
                                                             this, SLOT(disconnected()));
                                        Q_EMIT opened();
                                      });
}

void MessageBus::disconnected() {
  close();
  Q_EMIT lost();
  openLater();
}

void MessageBus::close() {
  if (connection_) QDBusConnection::disconnectFromBus(connection_->name());
  connection_.reset();
}

void MessageBus::call(const QDBusMessage& message, QObject* receiver, Reply then,
                      std::function<void()> failed) {
  if (!connection_) return;
  auto* watcher = new QDBusPendingCallWatcher(connection_->asyncCall(message), receiver);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
                   [watcher, then = std::move(then), failed = std::move(failed)] {
                     watcher->deleteLater();
                     if (!watcher->isError()) return then(watcher->reply());
                     if (failed) failed();
                   });
}

BusService::BusService(MessageBus& bus, QString name, bool starts)
    : bus_(bus), name_(std::move(name)), starts_(starts) {
  connect(&bus, &MessageBus::opened, this, &BusService::busOpened);
  connect(&bus, &MessageBus::lost, this, [this] { onVanish(); });
}

void BusService::listen(const QString& path, const QString& interface, const QString& member,
                        const QString& firstArgument) {
  matches_.push_back(
      {path, interface, member, firstArgument.isEmpty() ? QStringList() : QStringList{firstArgument}});
}

void BusService::busOpened() {
  QDBusConnection& connection = *bus_.connection();
  connection.connect("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "NameOwnerChanged", {name_}, "sss", this, SLOT(ownerChanged(QString, QString, QString)));
  for (const Match& match : matches_) {
    connection.connect(name_, match.path, match.interface, match.member, match.arguments, QString(), this,
                       SLOT(received(QDBusMessage)));
  }
  onAppear();
}

void BusService::ownerChanged(const QString&, const QString& before, const QString& now) {
  if (!before.isEmpty()) onVanish();
  if (!now.isEmpty()) onAppear();
}

void BusService::received(const QDBusMessage& message) { onSignal(message); }

void BusService::call(const QString& path, const QString& interface, const QString& method,
                      const QVariantList& arguments, MessageBus::Reply then, std::function<void()> failed) {
  QDBusMessage message = QDBusMessage::createMethodCall(name_, path, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(starts_);
  bus_.call(message, this, std::move(then), std::move(failed));
}

}  // namespace tarnwick
