#include "linux/calendar/EvolutionCalendar.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDateTime>

namespace tarnwick {
namespace {

constexpr double retryInterval = 60;
/// After the service has died: it may be about to be replaced.
constexpr double restartDelay = 1;
/// A change of many events is one change.
constexpr double settleTime = 0.1;
constexpr double day = 86400;

constexpr auto calendarInterface = "org.gnome.evolution.dataserver.Calendar";
constexpr auto viewInterface = "org.gnome.evolution.dataserver.CalendarView";
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
                                     QString identifier)
    : scheduler_(scheduler), bus_(bus), readCalendar_(readCalendar), identifier_(std::move(identifier)) {}

EvolutionCalendar::~EvolutionCalendar() {
  unwatch();
  if (!path_.isEmpty()) callCalendar("Close", {}, [](const QDBusMessage&) {});
}

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
  answers_ = std::make_unique<QObject>();
  busName_ = service;
  path_.clear();
  isReading_ = stale_ = false;
  call(
      "/org/gnome/evolution/dataserver/CalendarFactory", "org.gnome.evolution.dataserver.CalendarFactory",
      "OpenCalendar", {identifier_}, [this](const QDBusMessage& reply) { opened(reply); },
      [this] { reopenAfter(retryInterval); });
}

void EvolutionCalendar::opened(const QDBusMessage& reply) {
  busName_ = reply.arguments().value(1).toString();
  const QString path = reply.arguments().value(0).toString();
  bus_.connection()->connect(busInterface, busPath, busInterface, "NameOwnerChanged", {busName_}, "sss", this,
                             SLOT(ownerChanged(QString, QString, QString)));
  call(
      path, calendarInterface, "Open", {},
      [this, path](const QDBusMessage&) {
        path_ = path;
        watch();
      },
      [this] { reopenAfter(retryInterval); });
}

void EvolutionCalendar::reopenAfter(double seconds) {
  reopening_ = scheduler_.after(seconds, [this] {
    unwatch();
    open();
  });
}

void EvolutionCalendar::ownerChanged(const QString&, const QString&, const QString& now) {
  if (now.isEmpty()) reopenAfter(restartDelay);
}

void EvolutionCalendar::watch() {
  // All of it: a view of some days is silent about an occurrence that is moved out of them.
  callCalendar("GetView", {"#t"}, [this](const QDBusMessage& reply) {
    watching(reply.arguments().value(0).value<QDBusObjectPath>().path());
  });
}

void EvolutionCalendar::watching(const QString& view) {
  view_ = view;
  for (const char* signal : {"ObjectsAdded", "ObjectsModified", "ObjectsRemoved"}) {
    bus_.connection()->connect(QString(), view_, viewInterface, signal, this, SLOT(changed()));
  }
  const auto ignore = [](const QDBusMessage&) {};
  constexpr unsigned withoutWhatIsThere = 0;
  call(view_, viewInterface, "SetFlags", {withoutWhatIsThere}, ignore, {});
  call(view_, viewInterface, "Start", {}, ignore, {});
  changed();
}

void EvolutionCalendar::unwatch() {
  if (view_.isEmpty() || !bus_.connection()) return;
  for (const char* signal : {"ObjectsAdded", "ObjectsModified", "ObjectsRemoved"}) {
    bus_.connection()->disconnect(QString(), view_, viewInterface, signal, this, SLOT(changed()));
  }
  call(view_, viewInterface, "Dispose", {}, [](const QDBusMessage&) {}, {});
  view_.clear();
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
        answered);
  }
  if (reading->missingAnswers == 0) finish(*reading);
}

void EvolutionCalendar::finish(const Reading& reading) {
  isReading_ = false;
  if (std::exchange(stale_, false)) changed();
  events_ = reading.result.events;
  for (CalendarEvent& event : events_) {
    event.identifier = identifier_.toStdString() + '/' + event.identifier;
    event.color = color_;
  }
  if (onChange) onChange();
}

void EvolutionCalendar::call(const QString& path, const char* interface, const char* method,
                             const QVariantList& arguments, MessageBus::Reply then,
                             std::function<void()> failed) {
  QDBusMessage message = QDBusMessage::createMethodCall(busName_, path, interface, method);
  message.setArguments(arguments);
  bus_.call(message, answers_.get(), std::move(then), std::move(failed));
}

void EvolutionCalendar::callCalendar(const char* method, const QVariantList& arguments,
                                     MessageBus::Reply then) {
  call(path_, calendarInterface, method, arguments, std::move(then), [this] { reopenAfter(retryInterval); });
}

}  // namespace tarnwick
