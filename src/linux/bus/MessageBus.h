#pragma once
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
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

/// A connection to a bus, which the adapters of services there share. A bus that is not there is looked for
/// every few seconds.
class MessageBus : public QObject {
  Q_OBJECT

 public:
  using Reply = std::function<void(const QDBusMessage&)>;

  /// @param address asked for whenever it is connected to: the library is never left to look for itself, as
  /// it would ask for a bus to be launched
  MessageBus(Scheduler& scheduler, std::string (*address)()) : scheduler_(scheduler), address_(address) {}
  ~MessageBus() override;

  /// Begins to connect; nothing waits for that.
  void open();
  /// None while there is none.
  std::optional<QDBusConnection>& connection() { return connection_; }
  /// Calls a method, and then `then` with the answer or `failed`, unless `receiver` has been destroyed by
  /// then. Without a connection nothing happens.
  void call(const QDBusMessage& message, QObject* receiver, Reply then, std::function<void()> failed = {});

 Q_SIGNALS:
  void opened();
  void lost();

 private Q_SLOTS:
  void disconnected();

 private:
  void connect();
  void openLater();
  void close();

  Scheduler& scheduler_;
  std::string (*const address_)();
  std::optional<QDBusConnection> connection_;
  BusWaiter waiter_{scheduler_};
  Task connecting_, retry_;
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

  /// Asks for a signal, before the bus is opened. An empty path stands for every object, a first argument for
  /// those signals only that begin with it.
  void listen(const QString& path, const QString& interface, const QString& member,
              const QString& firstArgument = {});
  /// Calls a method, and then `then` with the answer, or `failed`.
  void call(const QString& path, const QString& interface, const QString& method,
            const QVariantList& arguments, MessageBus::Reply then, std::function<void()> failed = {});

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
