#pragma once
#include <QObject>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Backoff.h"
#include "base/Scheduler.h"
#include "linux/bus/MessageBus.h"
#include "linux/calendar/CalendarReader.h"

namespace tarnwick {

/// One calendar of Evolution Data Server: opened, watched, and read again after each change. A calendar whose
/// server hangs or dies holds up no other one, and is opened again after a while.
class EvolutionCalendar : public QObject {
  Q_OBJECT

 public:
  /// The service that opens calendars.
  static constexpr auto service = "org.gnome.evolution.dataserver.Calendar8";

  /// All of these must outlive it, while the bus is connected.
  /// @param retrySeconds see `Backoff`
  EvolutionCalendar(Scheduler& scheduler, MessageBus& bus, ReadCalendar* readCalendar, QString identifier,
      double retrySeconds);
  ~EvolutionCalendar() override;

  /// `events` has another answer.
  std::function<void()> onChange;

  void setColor(const Color& color);
  /// Follows the events that overlap [from, to) from now on, and no others.
  void follow(Date from, Date to);
  const std::vector<CalendarEvent>& events() const { return events_; }

 private Q_SLOTS:
  void changed();
  void ownerChanged(const QString& name, const QString& before, const QString& now);

 private:
  struct Reading;

  void open();
  void opened(const QDBusMessage& reply);
  void failed();
  void close();
  void tell(
      const QString& path, const char* interface, const char* method, const QVariantList& arguments = {});
  void watch();
  void watching(const QString& view);
  void read();
  void ask(const QString& query, std::shared_ptr<Reading> reading);
  void expand(std::shared_ptr<Reading> reading);
  void complete(std::shared_ptr<Reading> reading);
  void finish(const Reading& reading);
  void call(const QString& path, const char* interface, const char* method, const QVariantList& arguments,
      MessageBus::Reply then, MessageBus::Failure otherwise);
  void callCalendar(const char* method, const QVariantList& arguments, MessageBus::Reply then);

  Scheduler& scheduler_;
  MessageBus& bus_;
  ReadCalendar* const readCalendar_;
  const QString identifier_;
  Color color_;
  Date from_, to_;

  /// Where the service has it; empty while it has not.
  QString busName_, path_;
  QString view_;
  /// Receiver of the answers; another one with each opening, so that no answer is about an earlier one.
  std::unique_ptr<QObject> answers_;
  Backoff backoff_;
  Task settling_, reading_, restarting_;
  bool isReading_ = false;
  bool stale_ = false;
  std::vector<CalendarEvent> events_;
};

}  // namespace tarnwick
