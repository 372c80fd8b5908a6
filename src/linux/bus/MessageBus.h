#pragma once
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Scheduler.h"
#include "dbus/SessionBusAddress.h"
#include "linux/bus/BusWaiter.h"

namespace tarnwick {

/// Where the system's bus listens.
std::string systemBusAddress();

/// A connection to a bus, which all adapters of what is there share. A bus that is not there, or no more, is
/// looked for again and again.
class MessageBus : public QObject {
  Q_OBJECT

 public:
  using Reply = std::function<void(const QDBusMessage&)>;
  /// Takes the error.
  using Failure = Reply;

  /// @param address asked for whenever it is connected to: the library is never left to look for itself, as
  /// it would ask for a bus to be launched
  /// @param retrySeconds see `Backoff`
  MessageBus(Scheduler& scheduler, std::string (*address)(), double retrySeconds = 5)
      : scheduler_(scheduler),
        address_(address),
        backoff_(scheduler, retrySeconds),
        waiter_(scheduler, retrySeconds) {}
  ~MessageBus() override;

  /// Begins to connect; nothing waits for that.
  void open();
  /// Connects, and waits so long at most for a bus that does not answer; then that goes on as with `open`.
  /// @return whether the bus is open
  bool openWithin(std::chrono::milliseconds patience);
  /// None while there is none.
  std::optional<QDBusConnection>& connection() { return connection_; }
  /// Calls a method, and then `then` with the answer or `failed`, unless `receiver` has been destroyed by
  /// then. Where nobody wants to know of a failure, the answer may come as late as it likes. Without a
  /// connection nothing happens.
  void call(const QDBusMessage& message, QObject* receiver, Reply then, Failure failed = {});

 Q_SIGNALS:
  void opened();
  void lost();

 private Q_SLOTS:
  void disconnected();

 private:
  void connect();
  void adopt(std::optional<QDBusConnection> made);
  void openLater();
  void close();

  Scheduler& scheduler_;
  std::string (*const address_)();
  std::optional<QDBusConnection> connection_;
  Backoff backoff_;
  BusWaiter waiter_;
  Task connecting_;
};

/// One service of a bus, followed through its coming and going. Nothing here waits for it.
class BusService : public QObject {
  Q_OBJECT

 public:
  /// @param starts a call starts the service when it does not run
  BusService(MessageBus& bus, QString name, bool starts = false);

  /// The service may be there: ask for everything anew.
  std::function<void()> onAppear;
  std::function<void()> onVanish;
  /// One of the signals that were asked for.
  std::function<void(const QDBusMessage&)> onSignal;

  /// Asks for a signal, before `follow`. An empty path stands for every object, a first argument for
  /// those signals only that begin with it.
  void listen(const QString& path, const QString& interface, const QString& member,
      const QString& firstArgument = {});
  /// Begins to follow the service, now or as soon as the bus is open.
  void follow();
  /// Calls a method, and then `then` with the answer, or `failed`.
  void call(const QString& path, const QString& interface, const QString& method,
      const QVariantList& arguments, MessageBus::Reply then, MessageBus::Failure failed = {});

 private Q_SLOTS:
  void busOpened();
  void ownerChanged(const QString& name, const QString& before, const QString& now);
  void received(const QDBusMessage& message);

 private:
  struct Match {
    QString path, interface, member;
    QStringList arguments;
  };

  MessageBus& bus_;
  const QString name_;
  const bool starts_;
  std::vector<Match> matches_;
};

}  // namespace tarnwick
