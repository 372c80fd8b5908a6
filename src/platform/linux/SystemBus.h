#pragma once
#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>

#include "base/Scheduler.h"

namespace tarnwick {

/// The connection to the system bus, which the adapters of system services share. A bus that is not there is
/// looked for every few seconds.
class SystemBus : public QObject {
  Q_OBJECT

 public:
  explicit SystemBus(Scheduler& scheduler) : scheduler_(scheduler) {}
  ~SystemBus() override;

  /// Begins to connect, off the main thread.
  void open();
  /// None while there is none.
  std::optional<QDBusConnection>& connection() { return connection_; }

 Q_SIGNALS:
  void opened();
  void lost();

 private Q_SLOTS:
  void disconnected();

 private:
  void close();

  Scheduler& scheduler_;
  std::optional<QDBusConnection> connection_;
  Task connecting_;
  Task retry_;
};

/// One service of the system bus, followed through its coming and going. Nothing here waits for it.
class SystemService : public QObject {
  Q_OBJECT

 public:
  using Reply = std::function<void(const QDBusMessage&)>;

  /// @param starts a call starts the service when it does not run
  SystemService(SystemBus& bus, QString name, bool starts = false);

  /// The service may be there: ask for everything anew.
  std::function<void()> onAppear;
  std::function<void()> onVanish;
  /// One of the signals that were asked for.
  std::function<void(const QDBusMessage&)> onSignal;

  /// Asks for a signal, before the bus is opened. An empty path stands for every object, a first argument for
  /// those signals only that begin with it.
  void listen(const QString& path, const QString& interface, const QString& member,
              const QString& firstArgument = {});
  /// Calls `then` with the answer, unless that is an error.
  void call(const QString& path, const QString& interface, const QString& method,
            const QVariantList& arguments, Reply then);

 private Q_SLOTS:
  void busOpened();
  void ownerChanged(const QString& name, const QString& before, const QString& now);
  void received(const QDBusMessage& message);

 private:
  struct Match {
    QString path, interface, member;
    QStringList arguments;
  };

  SystemBus& bus_;
  const QString name_;
  const bool starts_;
  std::vector<Match> matches_;
};

}  // namespace tarnwick
