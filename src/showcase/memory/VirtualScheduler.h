#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>

#include "base/Scheduler.h"

namespace tarnwick {

/// A clock that stands still until a test moves it. Everything runs on the calling thread, in the order of
/// its time; what is due at the same instant runs in the order in which it was asked for.
class VirtualScheduler : public Scheduler {
 public:
  Date now() const override { return Date{1'700'000'000} + uptime_ + clockSetBy_; }
  double uptime() const override { return uptime_; }
  Task after(double seconds, Work work) override;
  Task at(Date date, Work work) override;
  Task every(double seconds, Work work) override;
  Task post(Work work) override { return after(0, std::move(work)); }
  Task background(Work work, Work thenOnMain) override;

  /// Lets that much time pass and runs what falls due meanwhile.
  void advance(double seconds);
  /// Runs what is due now.
  void settle() { advance(0); }

  /// From now on the wall clock is that far ahead of the other one: somebody has set it, or the machine has
  /// slept.
  void setClock(double seconds);

  /// When the next work is due, in uptime; none when nothing is waiting.
  std::optional<double> nextDue();
  /// How many instants there were so far at which something ran.
  int wakeUps() const { return wakeUps_; }

  /// How long work off the main thread takes from now on.
  double backgroundSeconds = 0;

 private:
  struct Job {
    Work work;
    double start = 0;
    /// Seconds between two runs; 0 runs once.
    double period = 0;
    uint64_t runs = 0;
    bool cancelled = false;
    /// Of work that waits for the wall clock.
    std::optional<Date> date;
  };
  using Key = std::pair<double, uint64_t>;

  Task schedule(double seconds, Job job);
  double secondsUntil(Date date) const;
  void dropCancelled();

  double uptime_ = 0;
  double clockSetBy_ = 0;
  uint64_t sequence_ = 0;
  int wakeUps_ = 0;
  std::optional<double> lastWakeUp_;
  std::map<Key, std::shared_ptr<Job>> queue_;
};

}  // namespace tarnwick
