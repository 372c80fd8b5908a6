#include "linux/bus/SessionsObject.h"

namespace tarnwick {
namespace {

constexpr auto path = "/dev/tarnwick";

}  // namespace

SessionsObject::SessionsObject(Scheduler& scheduler, MessageBus& bus)
    : bus_(bus), telling_(scheduler, [this] { tell(); }) {
  connect(&bus_, &MessageBus::opened, this,
      [this] { bus_.connection()->registerObject(path, this, QDBusConnection::ExportScriptableSlots); });
}

void SessionsObject::changed() {
  answer_.reset();
  if (wasAsked_) telling_.request();
}

QString SessionsObject::Sessions() {
  wasAsked_ = true;
  if (!answer_) answer_ = QString::fromStdString(describe ? describe() : "[]");
  return *answer_;
}

void SessionsObject::tell() {
  // Whoever has asked meanwhile knows it already, but others may not.
  if (!std::exchange(wasAsked_, false) || !bus_.connection()) return;
  bus_.connection()->send(QDBusMessage::createSignal(path, "dev.tarnwick", "SessionsChanged"));
}

}  // namespace tarnwick
