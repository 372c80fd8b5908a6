#include "linux/bus/PermissionsObject.h"

#include "linux/bus/BusPayload.h"

namespace tarnwick {
namespace {

/// The tool's input, and an event as large as any of ours.
constexpr qsizetype longestRequest = qsizetype(longestToolInput) + longestEvent;

QString word(PermissionAnswer::Behavior behavior) {
  switch (behavior) {
    case PermissionAnswer::Behavior::allow:
      return "allow";
    case PermissionAnswer::Behavior::deny:
      return "deny";
    case PermissionAnswer::Behavior::none:
      break;
  }
  return "";
}

}  // namespace

PermissionsObject::PermissionsObject(MessageBus& bus, DBusNotificationCenter& notifications)
    : bus_(bus), notifications_(notifications) {
  connect(&bus_, &MessageBus::opened, this, [this] {
    callers_.emplace(nullptr).setConnection(*bus_.connection());
    callers_->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&*callers_, &QDBusServiceWatcher::serviceUnregistered, this, &PermissionsObject::forgetCaller);
    bus_.connection()->registerObject(
        "/dev/tarnwick/permissions", this, QDBusConnection::ExportScriptableSlots);
  });
  connect(&bus_, &MessageBus::lost, this, [this] {
    callers_.reset();
    forget([](const QDBusMessage&) { return true; });
  });
}

Subscription PermissionsObject::observe(Asked asked) {
  const auto kept = std::make_shared<Asked>(std::move(asked));
  asked_ = kept;
  return Subscription(kept);
}

Subscription PermissionsObject::observeEnd(Gone gone) {
  const auto kept = std::make_shared<Gone>(std::move(gone));
  gone_ = kept;
  return Subscription(kept);
}

void PermissionsObject::Ask(const QDBusMessage& call) {
  call.setDelayedReply(true);
  StringMap event = stringMapOf(call, longestRequest);
  const uint64_t number = ++last_;
  calls_[number] = call;
  callers_->addWatchedService(call.service());
  // It may have left before the bus was asked to tell.
  auto question = QDBusMessage::createMethodCall(
      "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner");
  question << call.service();
  bus_.call(question, this, [this, name = call.service()](const QDBusMessage& reply) {
    if (!reply.arguments().value(0).toBool()) forgetCaller(name);
  });
  size_t length = 0;
  for (const auto& [key, value] : event) length += key.size() + value.size();
  const bool isTaken =
      notifications_.enqueue(length, [this, number, event = std::move(event)] { ask(number, event); });
  if (!isTaken) answer(number, {});
}

void PermissionsObject::ask(uint64_t number, const StringMap& event) {
  if (!calls_.contains(number)) return;
  if (const auto asked = asked_.lock())
    (*asked)({number, event});
  else
    answer(number, {});
}

void PermissionsObject::answer(uint64_t number, const PermissionAnswer& answer) {
  const auto found = calls_.extract(number);
  if (found.empty() || !bus_.connection()) return;
  const QDBusMessage& call = found.mapped();
  bus_.connection()->send(call.createReply({word(answer.behavior), QString::fromStdString(answer.message)}));
  const auto isSame = [&](const auto& other) { return other.second.service() == call.service(); };
  if (std::ranges::none_of(calls_, isSame)) callers_->removeWatchedService(call.service());
}

void PermissionsObject::forgetCaller(const QString& name) {
  forget([&](const QDBusMessage& call) { return call.service() == name; });
}

void PermissionsObject::forget(const std::function<bool(const QDBusMessage&)>& isGone) {
  std::vector<uint64_t> numbers;
  for (const auto& [number, call] : calls_) {
    if (isGone(call)) numbers.push_back(number);
  }
  for (const uint64_t number : numbers) {
    calls_.erase(number);
    if (const auto gone = gone_.lock()) (*gone)(number);
  }
}

}  // namespace tarnwick
