#include "linux/bus/DBusNotificationCenter.h"

#include <QDBusMetaType>
#include <chrono>

#include "linux/bus/BusPayload.h"

namespace tarnwick {
namespace {

constexpr auto busName = "dev.tarnwick.Tarnwick";
constexpr auto signalPath = "/dev/tarnwick", signalInterface = "dev.tarnwick";
constexpr auto longestWait = std::chrono::milliseconds(500);

/// More than this may wait only of a flood.
constexpr size_t mostWaiting = 20'000, longestWaiting = 16 << 20;
constexpr double frame = 1.0 / 60;

QDBusMessage nameRequest() {
  constexpr unsigned doNotQueue = 4;
  auto request = QDBusMessage::createMethodCall(
      "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName");
  request << QString(busName) << doNotQueue;
  return request;
}

/// The member that a notification is sent as.
QString signal(const std::string& name) { return QString::fromStdString(name.substr(name.rfind('.') + 1)); }

}  // namespace

DBusNotificationCenter::DBusNotificationCenter(Scheduler& scheduler, MessageBus& bus)
    : scheduler_(scheduler), bus_(bus) {
  // A second overlay must not even show itself; but a bus that hangs must not keep the first one from it.
  if (bus_.openWithin(longestWait)) {
    listen();
    nameAnswered(bus_.connection()->call(nameRequest(), QDBus::Block, static_cast<int>(longestWait.count())));
  }
  connect(&bus_, &MessageBus::opened, this, &DBusNotificationCenter::opened);
}

void DBusNotificationCenter::opened() {
  listen();
  bus_.call(nameRequest(), this, [this](const QDBusMessage& reply) { nameAnswered(reply); });
}

void DBusNotificationCenter::nameAnswered(const QDBusMessage& reply) {
  constexpr unsigned primaryOwner = 1, alreadyOwner = 4;
  const unsigned result = reply.arguments().value(0).toUInt();
  anotherOverlayRuns_ =
      reply.type() == QDBusMessage::ReplyMessage && result != primaryOwner && result != alreadyOwner;
  if (anotherOverlayRuns_ && onAnotherOverlay) onAnotherOverlay();
}

/// To whatever it will be, and before the name is asked for: who sees that is heard, however soon. What comes
/// before the first turn of the loop waits for it.
void DBusNotificationCenter::listen() {
  bus_.connection()->connect(
      QString(), signalPath, signalInterface, QString(), this, SLOT(receive(QDBusMessage)));
}

void DBusNotificationCenter::post(const std::string& name, const StringMap& payload) {
  if (!bus_.connection()) return;
  auto message = QDBusMessage::createSignal(signalPath, signalInterface, signal(name));
  QMap<QString, QString> map;
  for (const auto& [key, value] : payload) map[QString::fromStdString(key)] = QString::fromStdString(value);
  qDBusRegisterMetaType<QMap<QString, QString>>();
  message << QVariant::fromValue(map);
  bus_.connection()->send(message);
  // Answered once it has taken what came before.
  const auto request = QDBusMessage::createMethodCall(
      "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId");
  bus_.connection()->call(request, QDBus::Block, static_cast<int>(longestWait.count()));
}

Subscription DBusNotificationCenter::observe(const std::string& name, Receiver receive) {
  auto receiver = std::make_shared<Receiver>(std::move(receive));
  receivers_[name].push_back(receiver);
  return Subscription(receiver);
}

void DBusNotificationCenter::receive(const QDBusMessage& message) {
  receive((message.interface() + '.' + message.member()).toStdString(), stringMapOf(message, longestEvent));
}

void DBusNotificationCenter::receive(const std::string& name, StringMap payload) {
  size_t length = 0;
  for (const auto& [key, value] : payload) length += key.size() + value.size();
  enqueue(length, [this, name, payload = std::move(payload)] { deliver(name, payload); });
}

bool DBusNotificationCenter::enqueue(size_t length, std::function<void()> deliver) {
  if (waiting_.size() == mostWaiting || waitingLength_ + length > longestWaiting) return false;
  waitingLength_ += length;
  waiting_.push_back({std::move(deliver), length});
  if (!pause_) deliverWaiting();
  return true;
}

void DBusNotificationCenter::deliverWaiting() {
  pause_ = Task();
  while (!waiting_.empty()) {
    const double start = scheduler_.uptime();
    if (start - frameStart_ > frame) {
      frameStart_ = start;
      spent_ = 0;
    }
    if (spent_ > frame / 2) {
      pause_ = scheduler_.after(frame / 2, [this] { deliverWaiting(); });
      return;
    }
    const Received next = std::move(waiting_.front());
    waiting_.pop_front();
    waitingLength_ -= next.length;
    next.deliver();
    spent_ += scheduler_.uptime() - start;
  }
}

void DBusNotificationCenter::deliver(const std::string& name, const StringMap& payload) {
  const auto entry = receivers_.find(name);
  if (entry == receivers_.end()) return;
  std::erase_if(entry->second, [](const auto& receiver) { return receiver.expired(); });
  const auto receivers = entry->second;  // a receiver may add or remove others
  for (const auto& weak : receivers) {
    if (const auto receiver = weak.lock()) (*receiver)(payload);
  }
}

}  // namespace tarnwick
