#pragma once
#include <gio/gio.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>

namespace tarnwick {

struct GLibRelease {
  void operator()(GVariant* value) const { g_variant_unref(value); }
  void operator()(GCancellable* value) const { g_object_unref(value); }
  void operator()(GDBusConnection* value) const { g_object_unref(value); }
  void operator()(GBytes* value) const { g_bytes_unref(value); }
  void operator()(GError* value) const { g_error_free(value); }
  void operator()(gpointer value) const { g_free(value); }
};
template<typename Type>
using Owned = std::unique_ptr<Type, GLibRelease>;

/// One shot of the main loop's clock; destroying it stops it.
class Timer {
 public:
  Timer() = default;
  Timer(const Timer&) = delete;
  ~Timer() { stop(); }

  /// Runs `work` once, in place of what was waiting.
  void start(int64_t microseconds, std::function<void()> work) {
    stop();
    work_ = std::move(work);
    const auto milliseconds = static_cast<guint>((std::max<int64_t>(microseconds, 0) + 999) / 1000);
    source_ = g_timeout_add(milliseconds, fire, this);
  }
  void stop() {
    if (source_) g_source_remove(source_);
    source_ = 0;
  }
  bool isRunning() const { return source_; }

 private:
  static gboolean fire(gpointer self) {
    auto* timer = static_cast<Timer*>(self);
    timer->source_ = 0;
    // The work may start the timer again, or end it.
    const auto work = std::move(timer->work_);
    work();
    return G_SOURCE_REMOVE;
  }

  guint source_ = 0;
  std::function<void()> work_;
};

}  // namespace tarnwick
