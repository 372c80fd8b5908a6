#include "linux/process/AlarmClock.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarnwick {

AlarmClock::AlarmClock()
    : timer_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)),
      notifier_(timer_, QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { ring(); });
}

AlarmClock::~AlarmClock() {
  notifier_.setEnabled(false);
  ::close(timer_);
}

Task AlarmClock::at(Date date, Scheduler::Work work) {
  const Key key(date, ++count_);
  alarms_.emplace(key, std::move(work));
  set();
  return Task([this, key] {
    if (alarms_.erase(key)) set();
  });
}

void AlarmClock::ring() {
  // An error tells that the clock was set.
  uint64_t times;
  [[maybe_unused]] const ssize_t count = ::read(timer_, &times, sizeof times);
  const auto end = alarms_.upper_bound({Date::systemNow(), count_});
  std::vector<Key> due;
  std::transform(
      alarms_.begin(), end, std::back_inserter(due), [](const auto& alarm) { return alarm.first; });
  for (const Key& key : due) {
    // One may cancel another.
    if (const auto alarm = alarms_.extract(key)) alarm.mapped()();
  }
  set();
}

void AlarmClock::set() {
  itimerspec time{};  // never
  if (!alarms_.empty()) {
    // A time of zero would mean never.
    const double seconds = std::clamp(alarms_.begin()->first.first.secondsSince1970, 1.0, 1e15);
    time.it_value.tv_sec = static_cast<time_t>(seconds);
    time.it_value.tv_nsec = static_cast<long>((seconds - std::floor(seconds)) * 1e9);
  }
  ::timerfd_settime(timer_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &time, nullptr);
}

}  // namespace tarnwick
