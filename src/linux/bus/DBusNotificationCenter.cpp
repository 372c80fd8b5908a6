#include "linux/bus/DBusNotificationCenter.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <chrono>

#include "linux/bus/MessageBus.h"

namespace tarnwick {
namespace {

constexpr auto busName = "dev.tarnwick.Tarnwick";
constexpr auto signalPath = "/dev/tarnwick";
constexpr double retryInterval = 5;
constexpr auto longestWait = std::chrono::milliseconds(500);

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

/// A connection on its way; closed when nobody takes it.
struct DBusNotificationCenter::Attempt {
  ~Attempt() {
    if (bus) QDBusConnection::disconnectFromBus(bus->name());
  }
  /// Blocks for as long as the bus takes to answer.
  void run() {
    if (!address.isEmpty()) bus = QDBusConnection::connectToBus(address, name);
    if (bus && bus->isConnected()) {
      constexpr unsigned primaryOwner = 1, alreadyOwner = 4;
      const QDBusMessage reply = bus->call(nameRequest());
      const unsigned result = reply.arguments().value(0).toUInt();
      nameIsTaken =
          reply.type() == QDBusMessage::ReplyMessage && result != primaryOwner && result != alreadyOwner;
    }
  }

  QString address, name;
  std::optional<QDBusConnection> bus;
  bool nameIsTaken = false;
};

DBusNotificationCenter::DBusNotificationCenter(Scheduler& scheduler) : scheduler_(scheduler) {
  // A second overlay must not even show itself; but a bus that hangs must not keep the first one from it.
  BusConnection probe(parseBusAddresses(sessionBusAddress()), BusConnection::Peer::anybody);
  if (probe.wait(longestWait) != BusConnection::State::answers) {
    awaitBus();
    return;
  }
  const auto attempt = nextAttempt();
  attempt->run();
  adopt(*attempt);
}

DBusNotificationCenter::~DBusNotificationCenter() {
  if (bus_) QDBusConnection::disconnectFromBus(bus_->name());
}

std::shared_ptr<DBusNotificationCenter::Attempt> DBusNotificationCenter::nextAttempt() {
  // A connection's name cannot be used again while the dead one is being taken apart.
  static int number = 0;
  const auto attempt = std::make_shared<Attempt>();
  attempt->address = QString::fromStdString(sessionBusAddress());
  attempt->name = QString("tarnwick-%1").arg(++number);
  return attempt;
}

void DBusNotificationCenter::awaitBus() {
  waiter_.wait(sessionBusAddress, [this] {
    const auto attempt = nextAttempt();
    connecting_ = scheduler_.background([attempt] { attempt->run(); }, [this, attempt] { adopt(*attempt); });
  });
}

void DBusNotificationCenter::adopt(Attempt& attempt) {
  if (!attempt.bus || !attempt.bus->isConnected()) return retryLater();
  bus_ = std::exchange(attempt.bus, std::nullopt);
  bus_->connect(QString(), "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", this,
                SLOT(disconnected()));
  for (const auto& [notification, receivers] : receivers_) listen(notification);
  anotherOverlayRuns_ = attempt.nameIsTaken;
  if (anotherOverlayRuns_ && onAnotherOverlay) onAnotherOverlay();
}

void DBusNotificationCenter::disconnected() {
  if (bus_) QDBusConnection::disconnectFromBus(bus_->name());
  bus_.reset();
  retryLater();
}

void DBusNotificationCenter::retryLater() {
  retry_ = scheduler_.after(retryInterval, [this] { awaitBus(); });
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
