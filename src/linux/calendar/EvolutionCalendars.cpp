#include "linux/calendar/EvolutionCalendars.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusObjectPath>
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "base/LocalTime.h"
#include "linux/process/Module.h"

namespace tarnwick {
namespace {

/// A change of many sources is one change.
constexpr double settleTime = 0.1;

constexpr auto service = "org.gnome.evolution.dataserver.Sources5";
constexpr auto managerPath = "/org/gnome/evolution/dataserver/SourceManager";
constexpr auto sourceInterface = "org.gnome.evolution.dataserver.Source";
constexpr auto objectManager = "org.freedesktop.DBus.ObjectManager";

using Objects = QMap<QDBusObjectPath, QMap<QString, QVariantMap>>;

/// What is written about a source.
struct Source {
  explicit Source(const QString& data) {
    QString group;
    for (const QString& line : data.split('\n')) {
      if (line.startsWith('[')) {
        group = line.trimmed();
        isCalendar = isCalendar || group == "[Calendar]";
      } else if (group == "[Data Source]") {
        if (line.startsWith("Parent=")) parent = line.section('=', 1).trimmed();
        if (line.startsWith("Enabled=")) isEnabled = line.section('=', 1).trimmed() != "false";
      } else if (group == "[Calendar]" && line.startsWith("Color=")) {
        color = parsed(line.section('=', 1).trimmed().toStdString());
      }
    }
  }

  static Color parsed(const std::string& text) {
    unsigned red, green, blue;
    if (std::sscanf(text.c_str(), "#%2x%2x%2x", &red, &green, &blue) != 3) return colors::blue;
    return {red / 255.0, green / 255.0, blue / 255.0};
  }

  bool isCalendar = false;
  bool isEnabled = true;
  QString parent;
  Color color = colors::blue;
};

/// An account that is switched off takes its calendars along.
bool isEnabled(const std::map<QString, Source>& all, const QString& identifier) {
  QString each = identifier;
  for (size_t depth = 0; depth <= all.size(); ++depth) {
    const auto source = all.find(each);
    if (source == all.end()) return true;
    if (!source->second.isEnabled) return false;
    each = source->second.parent;
  }
  return false;
}

}  // namespace

ReadCalendar* loadCalendarReader(const std::string& folder) {
  return reinterpret_cast<ReadCalendar*>(moduleFunction(folder + "/CalendarReader.so", readCalendarName));
}

bool hasCalendars(const Folders& folders) {
  const std::string places[] = {folders.data() + "/evolution", folders.configuration() + "/evolution",
      folders.configuration() + "/goa-1.0"};
  std::error_code ignored;
  return std::ranges::any_of(
      places, [&](const auto& place) { return std::filesystem::exists(place, ignored); });
}

EvolutionCalendars::EvolutionCalendars(Scheduler& scheduler, MessageBus& bus, bool starts,
    std::function<ReadCalendar*()> load, double retrySeconds)
    : scheduler_(scheduler),
      bus_(bus),
      load_(std::move(load)),
      retrySeconds_(retrySeconds),
      sources_(bus, service, starts) {
  sources_.listen(managerPath, objectManager, "InterfacesAdded");
  sources_.listen(managerPath, objectManager, "InterfacesRemoved");
  sources_.listen("", "org.freedesktop.DBus.Properties", "PropertiesChanged", sourceInterface);
  sources_.onSignal = [this](const QDBusMessage&) { lookAgainAfter(settleTime); };
  sources_.onAppear = [this] { look(); };
  sources_.onVanish = [] {};
  QObject::connect(&bus, &MessageBus::lost, &sources_, [this] {
    calendars_.clear();
    setAccess(false);
  });
}

void EvolutionCalendars::connect() {
  isConnected_ = true;
  sources_.follow();
}

void EvolutionCalendars::requestAccess(std::function<void(bool)> then) {
  onAccess_ = std::move(then);
  if (access_) return onAccess_(true);
  look();
}

void EvolutionCalendars::lookAgainAfter(double seconds) {
  looking_ = scheduler_.after(seconds, [this] { look(); });
}

void EvolutionCalendars::look() {
  if (!onAccess_ || !isConnected_) return;
  sources_.call(
      managerPath, objectManager, "GetManagedObjects", {},
      [this](const QDBusMessage& reply) {
        std::map<QString, Source> all;
        for (const auto& interfaces : qdbus_cast<Objects>(reply.arguments().value(0))) {
          const QVariantMap properties = interfaces[sourceInterface];
          all.emplace(properties["UID"].toString(), Source(properties["Data"].toString()));
        }
        Colors colors;
        for (const auto& [identifier, source] : all) {
          if (source.isCalendar && isEnabled(all, identifier)) colors.emplace(identifier, source.color);
        }
        setSources(colors);
      },
      [this](const QDBusMessage& error) {
        setAccess(false);
        // The bus tells when there is one.
        if (error.errorName() != QDBusError::errorString(QDBusError::ServiceUnknown))
          lookAgainAfter(retrySeconds_);
      });
}

void EvolutionCalendars::setSources(const Colors& colors) {
  colors_ = colors;
  if (read_) return update();
  if (loading_) return;
  const auto read = std::make_shared<ReadCalendar*>();
  loading_ = scheduler_.background([read, load = load_] { *read = load(); },
      [this, read] {
        read_ = *read;
        read_ ? update() : setAccess(false);
      });
}

void EvolutionCalendars::update() {
  std::erase_if(calendars_, [this](const auto& calendar) { return !colors_.contains(calendar.first); });
  for (const auto& [identifier, color] : colors_) {
    auto& calendar = calendars_[identifier];
    if (!calendar) {
      calendar = std::make_unique<EvolutionCalendar>(scheduler_, bus_, read_, identifier, retrySeconds_);
      calendar->onChange = [this] { publish(); };
      if (followed_) calendar->follow(followed_->first, followed_->second);
    }
    calendar->setColor(color);
  }
  publish();
  if (!access_) setAccess(true);
}

void EvolutionCalendars::publish() {
  std::vector<CalendarEvent> events;
  for (const auto& [identifier, calendar] : calendars_) {
    events.insert(events.end(), calendar->events().begin(), calendar->events().end());
  }
  if (events == known_) return;
  known_ = std::move(events);
  changes_.notifyObservers();
}

void EvolutionCalendars::setAccess(bool access) {
  access_ = access;
  if (!access) known_.clear();
  if (onAccess_) onAccess_(access);
}

std::vector<CalendarEvent> EvolutionCalendars::events(Date from, Date to) {
  // Whole days, so that the time passing asks for nothing new.
  const std::pair days(startOfDay(from), to);
  if (followed_ != days) {
    followed_ = days;
    for (const auto& [identifier, calendar] : calendars_) calendar->follow(days.first, days.second);
  }
  std::vector<CalendarEvent> found;
  std::copy_if(known_.begin(), known_.end(), std::back_inserter(found), [=](const CalendarEvent& event) {
    return event.start < to && (event.end > from || event.start >= from);
  });
  return found;
}

}  // namespace tarnwick
