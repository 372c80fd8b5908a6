#include <libecal/libecal.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "platform/linux/CalendarClient.h"

namespace tarnwick {
namespace {

constexpr unsigned retrySeconds = 60;
/// A change of many events is one change.
constexpr unsigned settleMilliseconds = 100;

/// Owns a GObject.
struct Unreference {
  template<typename T>
  void operator()(T* object) const {
    g_object_unref(object);
  }
};
template<typename T>
using Owned = std::unique_ptr<T, Unreference>;

Color color(ESource* source) {
  constexpr Color fallback = colors::blue;
  auto* extension = E_SOURCE_SELECTABLE(e_source_get_extension(source, E_SOURCE_EXTENSION_CALENDAR));
  char* text = e_source_selectable_dup_color(extension);
  unsigned red, green, blue;
  const bool known = text && std::sscanf(text, "#%2x%2x%2x", &red, &green, &blue) == 3;
  g_free(text);
  return known ? Color{red / 255.0, green / 255.0, blue / 255.0} : fallback;
}

/// A day of the local time zone; a time in its own zone, else in the local one.
Date date(const ICalTime* time) {
  ICalTimezone* zone = i_cal_time_get_timezone(time);
  if (!i_cal_time_is_date(time) && (zone || i_cal_time_is_utc(time))) {
    return {static_cast<double>(i_cal_time_as_timet_with_zone(time, zone))};
  }
  std::tm parts{};
  parts.tm_year = i_cal_time_get_year(time) - 1900;
  parts.tm_mon = i_cal_time_get_month(time) - 1;
  parts.tm_mday = i_cal_time_get_day(time);
  parts.tm_isdst = -1;
  if (!i_cal_time_is_date(time)) {
    parts.tm_hour = i_cal_time_get_hour(time);
    parts.tm_min = i_cal_time_get_minute(time);
    parts.tm_sec = i_cal_time_get_second(time);
  }
  return {static_cast<double>(std::mktime(&parts))};
}

ICalTimezone* localZone() {
  const char* name = std::getenv("TZ");
  if (name && *name == ':') ++name;
  ICalTimezone* zone = name && *name ? i_cal_timezone_get_builtin_timezone(name) : nullptr;
  if (!zone) zone = e_cal_util_get_system_timezone();
  return zone ? zone : i_cal_timezone_get_utc_timezone();
}

/// Work on the thread of the current context, after a while. @return what ends it
GSource* after(unsigned milliseconds, GSourceFunc work, gpointer data) {
  GSource* source = g_timeout_source_new(milliseconds);
  g_source_set_callback(source, work, data, nullptr);
  g_source_attach(source, g_main_context_get_thread_default());
  return source;
}

void end(GSource*& source) {
  if (!source) return;
  g_source_destroy(source);
  g_source_unref(source);
  source = nullptr;
}

struct Span {
  Date from, to;
};

/// One calendar: opened, watched, and read again after each change. A calendar whose server hangs or dies
/// holds up no other one.
class Calendar : public std::enable_shared_from_this<Calendar> {
 public:
  Calendar(ESource* source, std::function<void()> onChange)
      : source_(E_SOURCE(g_object_ref(source))),
        cancellable_(g_cancellable_new()),
        onChange_(std::move(onChange)) {}

  ~Calendar() { close(); }

  const std::vector<CalendarEvent>& events() const { return events_; }

  void open(Span span) {
    span_ = span;
    e_cal_client_connect(source_.get(), E_CAL_CLIENT_SOURCE_TYPE_EVENTS, 0, cancellable_.get(), connected,
                         hold());
  }

  void follow(Span span) {
    span_ = span;
    if (client_) watch();
  }

  /// Whatever is under way answers no more.
  void close() {
    g_cancellable_cancel(cancellable_.get());
    end(settle_);
    end(retry_);
    unwatch();
    if (client_) g_signal_handlers_disconnect_by_data(client_.get(), this);
  }

  void changed() {
    if (settle_ || !client_) return;
    settle_ = after(settleMilliseconds, settled, this);
  }

 private:
  /// A reference for a callback that comes in any case.
  gpointer hold() { return new std::shared_ptr<Calendar>(shared_from_this()); }
  static std::shared_ptr<Calendar> release(gpointer held) {
    const std::unique_ptr<std::shared_ptr<Calendar>> pointer(static_cast<std::shared_ptr<Calendar>*>(held));
    return *pointer;
  }
  bool closed() const { return g_cancellable_is_cancelled(cancellable_.get()); }

  static void connected(GObject*, GAsyncResult* result, gpointer held) {
    const auto self = release(held);
    EClient* client = e_cal_client_connect_finish(result, nullptr);
    if (self->closed()) {
      g_clear_object(&client);
      return;
    }
    if (!client) {
      self->reopenLater();
      return;
    }
    self->client_.reset(E_CAL_CLIENT(client));
    e_cal_client_set_default_timezone(self->client_.get(), localZone());
    g_signal_connect_swapped(client, "backend-died", G_CALLBACK(died), self.get());
    self->watch();
  }

  static void died(Calendar* self) { self->reopenLater(); }

  void reopenLater() {
    if (retry_) return;
    retry_ = after(client_ ? 1000 : retrySeconds * 1000, reopen, this);
  }
  static gboolean reopen(gpointer data) {
    auto* self = static_cast<Calendar*>(data);
    end(self->retry_);
    self->unwatch();
    if (self->client_) g_signal_handlers_disconnect_by_data(self->client_.get(), self);
    self->client_.reset();
    self->open(self->span_);
    return G_SOURCE_REMOVE;
  }

  void watch() {
    unwatch();
    char* from = isodate_from_time_t(static_cast<time_t>(span_.from.secondsSince1970) - 86400);
    char* to = isodate_from_time_t(static_cast<time_t>(span_.to.secondsSince1970) + 86400);
    char* query = g_strdup_printf("(occur-in-time-range? (make-time \"%s\") (make-time \"%s\"))", from, to);
    e_cal_client_get_view(client_.get(), query, cancellable_.get(), gotView, hold());
    g_free(query);
    g_free(to);
    g_free(from);
    changed();
  }

  static void gotView(GObject* client, GAsyncResult* result, gpointer held) {
    const auto self = release(held);
    ECalClientView* view = nullptr;
    const bool got = e_cal_client_get_view_finish(E_CAL_CLIENT(client), result, &view, nullptr);
    if (!got || self->closed() || client != G_OBJECT(self->client_.get())) {
      g_clear_object(&view);
      if (!got && !self->closed()) self->reopenLater();
      return;
    }
    self->unwatch();
    self->view_.reset(view);
    for (const char* signal : {"objects-added", "objects-modified", "objects-removed", "complete"}) {
      g_signal_connect_swapped(view, signal, G_CALLBACK(viewChanged), self.get());
    }
    e_cal_client_view_start(view, nullptr);
  }

  static void viewChanged(Calendar* self) { self->changed(); }

  void unwatch() {
    if (!view_) return;
    g_signal_handlers_disconnect_by_data(view_.get(), this);
    view_.reset();
  }

  static gboolean settled(gpointer data) {
    auto* self = static_cast<Calendar*>(data);
    end(self->settle_);
    self->read();
    return G_SOURCE_REMOVE;
  }

  /// One reading of all occurrences.
  struct Reading {
    std::shared_ptr<Calendar> calendar;
    Color color;
    std::string identifierPrefix;
    Span span;
    std::vector<CalendarEvent> events;
  };

  void read() {
    if (reading_) {
      stale_ = true;
      return;
    }
    reading_ = true;
    auto* reading = new Reading{shared_from_this(),
                                color(source_.get()),
                                std::string(e_source_get_uid(source_.get())) + '/',
                                span_,
                                {}};
    // A day more on both sides: the library takes whole days for those of another time zone.
    e_cal_client_generate_instances(client_.get(), static_cast<time_t>(span_.from.secondsSince1970) - 86400,
                                    static_cast<time_t>(span_.to.secondsSince1970) + 86400,
                                    cancellable_.get(), foundOccurrence, reading, finishedReading);
  }

  static gboolean foundOccurrence(ICalComponent* component, ICalTime* start, ICalTime* end, gpointer data,
                                  GCancellable*, GError**) {
    auto* reading = static_cast<Reading*>(data);
    if (i_cal_component_get_status(component) == I_CAL_STATUS_CANCELLED) return TRUE;
    const char *uid = i_cal_component_get_uid(component), *title = i_cal_component_get_summary(component);
    CalendarEvent event{.identifier = reading->identifierPrefix + (uid ? uid : ""),
                        .title = title ? title : "",
                        .start = date(start),
                        .end = date(end),
                        .allDay = i_cal_time_is_date(start) != 0,
                        .color = reading->color};
    if (event.allDay && event.end <= event.start) event.end = dayAfter(start);
    if (event.start < reading->span.to && event.end >= reading->span.from) {
      reading->events.push_back(std::move(event));
    }
    return TRUE;
  }

  static Date dayAfter(const ICalTime* day) {
    const Owned<ICalTime> next(i_cal_time_clone(day));
    i_cal_time_adjust(next.get(), 1, 0, 0, 0);
    return date(next.get());
  }

  static void finishedReading(gpointer data) {
    const std::unique_ptr<Reading> reading(static_cast<Reading*>(data));
    Calendar& self = *reading->calendar;
    self.reading_ = false;
    if (self.closed()) return;
    self.events_ = std::move(reading->events);
    if (std::exchange(self.stale_, false)) self.changed();
    self.onChange_();
  }

  const Owned<ESource> source_;
  const Owned<GCancellable> cancellable_;
  const std::function<void()> onChange_;
  Span span_{};
  Owned<ECalClient> client_;
  Owned<ECalClientView> view_;
  GSource* settle_ = nullptr;
  GSource* retry_ = nullptr;
  bool reading_ = false;
  bool stale_ = false;
  std::vector<CalendarEvent> events_;
};

/// A thread with a loop of its own, on which everything happens.
class EvolutionClient : public CalendarClient {
 public:
  explicit EvolutionClient(CalendarListener listener)
      : listener_(std::move(listener)),
        context_(g_main_context_new()),
        loop_(g_main_loop_new(context_, FALSE)),
        cancellable_(g_cancellable_new()),
        thread_([this] { run(); }) {}

  ~EvolutionClient() override {
    g_cancellable_cancel(cancellable_.get());
    invoke([this] { g_main_loop_quit(loop_); });
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }

  void follow(Date from, Date to) override {
    invoke([this, span = Span{from, to}] {
      span_ = span;
      for (const auto& [uid, calendar] : calendars_) calendar->follow(span);
      if (registry_) sourcesChanged(this);
    });
  }

 private:
  /// Runs that on the thread.
  void invoke(std::function<void()> work) {
    GSource* source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(
        source,
        [](gpointer data) -> gboolean {
          (*static_cast<std::function<void()>*>(data))();
          return G_SOURCE_REMOVE;
        },
        new std::function<void()>(std::move(work)),
        [](gpointer data) { delete static_cast<std::function<void()>*>(data); });
    g_source_attach(source, context_);
    g_source_unref(source);
  }

  void run() {
    g_main_context_push_thread_default(context_);
    start(this);
    g_main_loop_run(loop_);
    end(retry_);
    closeAll();
    // What was cancelled still answers.
    while (g_main_context_iteration(context_, FALSE)) {
    }
    g_main_context_pop_thread_default(context_);
  }

  static gboolean start(gpointer data) {
    auto* self = static_cast<EvolutionClient*>(data);
    end(self->retry_);
    // A session bus that ends must not take the program along.
    const Owned<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, self->cancellable_.get(), nullptr));
    if (bus) g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    if (bus) self->registry_.reset(e_source_registry_new_sync(self->cancellable_.get(), nullptr));
    self->listener_.onAccess(self->registry_ != nullptr);
    if (!self->registry_) {
      self->retry_ = after(retrySeconds * 1000, start, self);
      return G_SOURCE_REMOVE;
    }
    for (const char* signal :
         {"source-added", "source-removed", "source-enabled", "source-disabled", "source-changed"}) {
      g_signal_connect_swapped(self->registry_.get(), signal, G_CALLBACK(sourcesChanged), self);
    }
    sourcesChanged(self);
    return G_SOURCE_REMOVE;
  }

  static void sourcesChanged(EvolutionClient* self) {
    if (!self->span_) return;
    std::map<std::string, std::shared_ptr<Calendar>> present;
    GList* sources = e_source_registry_list_enabled(self->registry_.get(), E_SOURCE_EXTENSION_CALENDAR);
    for (GList* each = sources; each; each = each->next) {
      auto* source = E_SOURCE(each->data);
      std::shared_ptr<Calendar>& calendar = present[e_source_get_uid(source)];
      if (const auto known = self->calendars_.extract(e_source_get_uid(source))) {
        calendar = known.mapped();
        calendar->changed();  // its colour may be another
      } else {
        calendar = std::make_shared<Calendar>(source, [self] { self->publish(); });
        calendar->open(*self->span_);
      }
    }
    g_list_free_full(sources, g_object_unref);
    const bool someHaveGone = !self->calendars_.empty();
    self->closeAll();
    self->calendars_ = std::move(present);
    if (someHaveGone) self->publish();
  }

  void closeAll() {
    for (const auto& [uid, calendar] : calendars_) calendar->close();
    calendars_.clear();
  }

  void publish() {
    std::vector<CalendarEvent> events;
    for (const auto& [uid, calendar] : calendars_) {
      events.insert(events.end(), calendar->events().begin(), calendar->events().end());
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const CalendarEvent& a, const CalendarEvent& b) { return a.start < b.start; });
    listener_.onEvents(std::move(events));
  }

  const CalendarListener listener_;
  GMainContext* const context_;
  GMainLoop* const loop_;
  const Owned<GCancellable> cancellable_;
  Owned<ESourceRegistry> registry_;
  GSource* retry_ = nullptr;
  std::optional<Span> span_;
  std::map<std::string, std::shared_ptr<Calendar>> calendars_;
  std::thread thread_;
};

}  // namespace
}  // namespace tarnwick

extern "C" tarnwick::CalendarClient* tarnwickMakeCalendarClient(tarnwick::CalendarListener listener) {
  return new tarnwick::EvolutionClient(std::move(listener));
}
