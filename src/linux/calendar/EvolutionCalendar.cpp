#include "linux/calendar/EvolutionCalendar.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDateTime>

namespace tarnwick {
namespace {

/// After the service has died: it may be about to be replaced.
constexpr double restartDelay = 1;
/// A change of many events is one change.
constexpr double settleTime = 0.1;
constexpr double day = 86400;

constexpr auto calendarInterface = "org.gnome.evolution.dataserver.Calendar";
constexpr auto viewInterface = "org.gnome.evolution.dataserver.CalendarView";
constexpr const char* viewSignals[] = {"ObjectsAdded", "ObjectsModified", "ObjectsRemoved"};
constexpr auto busInterface = "org.freedesktop.DBus";
constexpr auto busPath = "/org/freedesktop/DBus";

QString written(Date date) {
  return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(date.secondsSince1970), Qt::UTC)
      .toString("yyyyMMdd'T'HHmmss'Z'");
}

QString quoted(const std::string& text) {
  return '"' + QString::fromStdString(text).replace('\\', "\\\\").replace('"', "\\\"") + '"';
}

}  // namespace

/// One reading of all occurrences. What the first answer refers to without telling of it is asked for then.
struct EvolutionCalendar::Reading {
  Date from, to;
  std::vector<std::string> components;
  CalendarReading result;
  bool askedForRepeating = false;
  std::set<std::string> zonesAskedFor;
  size_t missingAnswers = 0;
};

EvolutionCalendar::EvolutionCalendar(Scheduler& scheduler, MessageBus& bus, ReadCalendar* readCalendar,
    QString identifier, double retrySeconds)
    : scheduler_(scheduler),
      bus_(bus),
      readCalendar_(readCalendar),
      identifier_(std::move(identifier)),
      backoff_(scheduler, retrySeconds) {}

EvolutionCalendar::~EvolutionCalendar() { close(); }

void EvolutionCalendar::setColor(const Color& color) {
  if (color == color_) return;
  color_ = color;
  for (CalendarEvent& event : events_) event.color = color;
  if (onChange) onChange();
}

void EvolutionCalendar::follow(Date from, Date to) {
  from_ = from;
  to_ = to;
  if (!answers_) {
    open();
  } else if (!view_.isEmpty()) {
    changed();
  }
}

void EvolutionCalendar::open() {
  close();
  answers_ = std::make_unique<QObject>();
  busName_ = service;
  settling_ = Task();
  reading_ = Task();
  isReading_ = stale_ = false;
  call(
      "/org/gnome/evolution/dataserver/CalendarFactory", "org.gnome.evolution.dataserver.CalendarFactory",
      "OpenCalendar", {identifier_}, [this](const QDBusMessage& reply) { opened(reply); },
      [this](const QDBusMessage&) { failed(); });
}

void EvolutionCalendar::opened(const QDBusMessage& reply) {
  path_ = reply.arguments().value(0).toString();
  busName_ = reply.arguments().value(1).toString();
  bus_.connection()->connect(busInterface, busPath, busInterface, "NameOwnerChanged", {busName_}, "sss", this,
      SLOT(ownerChanged(QString, QString, QString)));
  callCalendar("Open", {}, [this](const QDBusMessage&) { watch(); });
}

void EvolutionCalendar::failed() {
  // Nothing that is still on its way counts.
  answers_ = std::make_unique<QObject>();
  backoff_.retry([this] { open(); });
}

void EvolutionCalendar::ownerChanged(const QString&, const QString&, const QString& now) {
  if (!now.isEmpty()) return;
  path_.clear();
  view_.clear();
  restarting_ = scheduler_.after(restartDelay, [this] { open(); });
}

/// The service keeps what was opened until it is closed.
void EvolutionCalendar::close() {
  if (!view_.isEmpty() && bus_.connection()) {
    for (const char* signal : viewSignals) {
      bus_.connection()->disconnect(QString(), view_, viewInterface, signal, this, SLOT(changed()));
    }
    tell(view_, viewInterface, "Dispose");
  }
  if (!path_.isEmpty()) tell(path_, calendarInterface, "Close");
  view_.clear();
  path_.clear();
}

void EvolutionCalendar::watch() {
  // All of it: a view of some days is silent about an occurrence that is moved out of them.
  callCalendar("GetView", {"#t"}, [this](const QDBusMessage& reply) {
    watching(reply.arguments().value(0).value<QDBusObjectPath>().path());
  });
}

void EvolutionCalendar::watching(const QString& view) {
  view_ = view;
  for (const char* signal : viewSignals) {
    bus_.connection()->connect(QString(), view_, viewInterface, signal, this, SLOT(changed()));
  }
  constexpr unsigned withoutWhatIsThere = 0;
  tell(view_, viewInterface, "SetFlags", {withoutWhatIsThere});
  tell(view_, viewInterface, "Start");
  changed();
}

void EvolutionCalendar::changed() {
  if (!settling_) {
    settling_ = scheduler_.after(settleTime, [this] {
      settling_ = Task();
      read();
    });
  }
}

void EvolutionCalendar::read() {
  if (isReading_) {
    stale_ = true;
    return;
  }
  isReading_ = true;
  auto reading = std::make_shared<Reading>();
  reading->from = from_;
  reading->to = to_;
  // A day more on both sides: the service takes days for those of the universal time.
  ask(QString("(occur-in-time-range? (make-time \"%1\") (make-time \"%2\"))")
          .arg(written(from_ - day), written(to_ + day)),
      std::move(reading));
}

void EvolutionCalendar::ask(const QString& query, std::shared_ptr<Reading> reading) {
  callCalendar("GetObjectList", {query}, [this, reading](const QDBusMessage& reply) {
    for (const QString& component : reply.arguments().value(0).toStringList()) {
      reading->components.push_back(component.toStdString());
    }
    expand(reading);
  });
}

void EvolutionCalendar::expand(std::shared_ptr<Reading> reading) {
  reading_ = scheduler_.background(
      [reading, read = readCalendar_] {
        reading->result = read(reading->components, reading->from, reading->to);
      },
      [this, reading] { complete(reading); });
}

void EvolutionCalendar::complete(std::shared_ptr<Reading> reading) {
  if (!reading->result.repeating.empty() && !std::exchange(reading->askedForRepeating, true)) {
    // An occurrence that was moved out of the span is not in the first answer, and would seem unmoved.
    QString query = "(uid?";
    for (const std::string& identifier : reading->result.repeating) query += ' ' + quoted(identifier);
    return ask(query + ')', std::move(reading));
  }
  for (const std::string& zone : reading->result.unknownZones) {
    if (!reading->zonesAskedFor.insert(zone).second) continue;
    ++reading->missingAnswers;
    const auto answered = [this, reading] {
      if (--reading->missingAnswers == 0) expand(reading);
    };
    call(
        path_, calendarInterface, "GetTimezone", {QString::fromStdString(zone)},
        [reading, answered](const QDBusMessage& reply) {
          reading->components.push_back(reply.arguments().value(0).toString().toStdString());
          answered();
        },
        [answered](const QDBusMessage&) { answered(); });
  }
  if (reading->missingAnswers == 0) finish(*reading);
}

void EvolutionCalendar::finish(const Reading& reading) {
  isReading_ = false;
  backoff_.succeeded();
  if (std::exchange(stale_, false)) changed();
  events_ = reading.result.events;
  for (CalendarEvent& event : events_) {
    event.identifier = identifier_.toStdString() + '/' + event.identifier;
    event.color = color_;
  }
  if (onChange) onChange();
}

void EvolutionCalendar::call(const QString& path, const char* interface, const char* method,
    const QVariantList& arguments, MessageBus::Reply then, MessageBus::Failure otherwise) {
  QDBusMessage message = QDBusMessage::createMethodCall(busName_, path, interface, method);
  message.setArguments(arguments);
  bus_.call(message, answers_.get(), std::move(then), std::move(otherwise));
}

void EvolutionCalendar::callCalendar(
    const char* method, const QVariantList& arguments, MessageBus::Reply then) {
  call(path_, calendarInterface, method, arguments, std::move(then),
      [this](const QDBusMessage&) { failed(); });
}

/// Calls a method whose answer does not matter.
void EvolutionCalendar::tell(
    const QString& path, const char* interface, const char* method, const QVariantList& arguments) {
  if (!bus_.connection()) return;
  QDBusMessage message = QDBusMessage::createMethodCall(busName_, path, interface, method);
  message.setArguments(arguments);
  message.setAutoStartService(false);
  bus_.connection()->send(message);
}

}  // namespace tarnwick
