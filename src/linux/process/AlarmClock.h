#pragma once
#include <QSocketNotifier>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

#include "base/Scheduler.h"

namespace tarnwick {

/// Runs work when the wall clock shows a time, on the main thread's event loop: also when the machine has
/// slept or the clock was set meanwhile. Costs nothing until then.
class AlarmClock {
 public:
  AlarmClock();
  ~AlarmClock();
  AlarmClock(const AlarmClock&) = delete;

  Task at(Date date, Scheduler::Work work);

 private:
  using Key = std::pair<Date, uint64_t>;

  void ring();
  void set();

  const int timer_;
  QSocketNotifier notifier_;
  std::map<Key, Scheduler::Work> alarms_;
  uint64_t count_ = 0;
};

}  // namespace tarnwick
