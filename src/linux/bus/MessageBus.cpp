#include "linux/bus/MessageBus.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <climits>

namespace tarnwick {
namespace {

/// As long as it takes.
constexpr int forever = INT_MAX;
constexpr int usualPatience = -1;

/// Cannot be used again while the dead one is being taken apart.
QString nextConnectionName() {
  static int number = 0;
  return QString("tarnwick-%1").arg(++number);
}

}  // namespace

std::string systemBusAddress() {
  const std::string_view address = environment("DBUS_SYSTEM_BUS_ADDRESS");
  return std::string(address.empty() ? "unix:path=/var/run/dbus/system_bus_socket" : address);
}

MessageBus::~MessageBus() { close(); }

void MessageBus::open() {
  waiter_.wait(address_, [this] { connect(); });
}

bool MessageBus::openWithin(std::chrono::milliseconds patience) {
  const std::string address = address_();
  if (BusConnection(parseBusAddresses(address), BusConnection::Peer::anybody).wait(patience) ==
      BusConnection::State::answers) {
    adopt(QDBusConnection::connectToBus(QString::fromStdString(address), nextConnectionName()));
  } else {
    open();
  }
  return connection_.has_value();
}

void MessageBus::openLater() {
  backoff_.retry([this] { open(); });
}

void MessageBus::connect() {
  const QString name = nextConnectionName();
  // Whatever becomes of this object meanwhile, a connection that nobody takes is closed.
  const std::shared_ptr<std::optional<QDBusConnection>> made(
      new std::optional<QDBusConnection>, [name](std::optional<QDBusConnection>* connection) {
        if (*connection) QDBusConnection::disconnectFromBus(name);
        delete connection;
      });
  connecting_ = scheduler_.background(
      [name, address = QString::fromStdString(address_()), made] {
        *made = QDBusConnection::connectToBus(address, name);
      },
      [this, made] { adopt(std::exchange(*made, std::nullopt)); });
}

void MessageBus::adopt(std::optional<QDBusConnection> made) {
  connection_ = std::move(made);
  if (!connection_ || !connection_->isConnected()) {
    close();
    return openLater();
  }
  backoff_.succeeded();
  connection_->connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
      this, SLOT(disconnected()));
  Q_EMIT opened();
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

void MessageBus::call(const QDBusMessage& message, QObject* receiver, Reply then, Failure failed) {
  if (!connection_) return;
  auto* watcher = new QDBusPendingCallWatcher(
      connection_->asyncCall(message, failed ? usualPatience : forever), receiver);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
      [watcher, then = std::move(then), failed = std::move(failed)] {
        watcher->deleteLater();
        if (!watcher->isError()) return then(watcher->reply());
        if (failed) failed(watcher->reply());
      });
}

BusService::BusService(MessageBus& bus, QString name, bool starts)
    : bus_(bus), name_(std::move(name)), starts_(starts) {}

void BusService::follow() {
  connect(&bus_, &MessageBus::opened, this, &BusService::busOpened);
  connect(&bus_, &MessageBus::lost, this, [this] { onVanish(); });
  if (bus_.connection()) busOpened();
}

void BusService::listen(
    const QString& path, const QString& interface, const QString& member, const QString& firstArgument) {
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
    const QVariantList& arguments, MessageBus::Reply then, MessageBus::Failure failed) {
  QDBusMessage message = QDBusMessage::createMethodCall(name_, path, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(starts_);
  bus_.call(message, this, std::move(then), std::move(failed));
}

}  // namespace tarnwick
