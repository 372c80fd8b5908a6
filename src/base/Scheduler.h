#pragma once
#include <functional>
#include <utility>

#include "base/Date.h"

namespace tarnwick {

/// A handle to scheduled work. Destroying or cancelling it cancels work that has not run yet; an empty task
/// does nothing.
class [[nodiscard]] Task {
 public:
  Task() = default;
  explicit Task(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
  Task(Task&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
  Task& operator=(Task&& other) noexcept {
    if (this != &other) {
      cancel();
      cancel_ = std::exchange(other.cancel_, nullptr);
    }
    return *this;
  }
  ~Task() { cancel(); }

  void cancel() {
    if (auto cancel = std::exchange(cancel_, nullptr)) cancel();
  }
  /// True while the handle refers to something; it stays true after a one-shot has run.
  explicit operator bool() const { return static_cast<bool>(cancel_); }

 private:
  std::function<void()> cancel_;
};

/// Time and the order of work. Everything but `background`'s first argument runs on the main thread.
class Scheduler {
 public:
  using Work = std::function<void()>;
  virtual ~Scheduler() = default;

  /// The wall-clock time.
  virtual Date now() const = 0;
  /// Seconds since an arbitrary origin, never going back: for intervals and animations.
  virtual double uptime() const = 0;
  /// Runs `work` once, `seconds` from now.
  virtual Task after(double seconds, Work work) = 0;
  /// Runs `work` every `seconds`, first after one interval. Timers of a second or more share one beat, so they
  /// may run up to half a second early or late.
  virtual Task every(double seconds, Work work) = 0;
  /// Runs `work` in the next turn of the loop.
  virtual Task post(Work work) = 0;
  /// Runs `work` off the main thread, then `thenOnMain` on it. Cancelling keeps `thenOnMain` from running;
  /// `work` runs to its end all the same.
  virtual Task background(Work work, Work thenOnMain) = 0;
};

}  // namespace tarnwick
