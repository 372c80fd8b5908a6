#include "support/VirtualScheduler.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tarnwick {
namespace {

/// Whole nanoseconds: sums of intervals that mean the same instant are the same instant.
double instant(double seconds) { return std::round(seconds * 1e9) / 1e9; }

}  // namespace

Task VirtualScheduler::schedule(double seconds, double period, Work work) {
  auto job = std::make_shared<Job>(Job{std::move(work), uptime_, period});
  queue_[{instant(uptime_ + seconds), sequence_++}] = job;
  return Task([weak = std::weak_ptr<Job>(job)] {
    if (auto cancelled = weak.lock()) cancelled->cancelled = true;
  });
}

Task VirtualScheduler::after(double seconds, Work work) {
  return schedule(seconds < 0 ? 0 : seconds, 0, std::move(work));
}

Task VirtualScheduler::every(double seconds, Work work) {
  return schedule(seconds, seconds, std::move(work));
}

Task VirtualScheduler::background(Work work, Work thenOnMain) {
  auto job = std::make_shared<Job>(Job{std::move(thenOnMain)});
  auto run = [this, job, work = std::move(work)] {
    work();
    if (job->work && !job->cancelled) queue_[{uptime_, sequence_++}] = job;
  };
  queue_[{instant(uptime_ + backgroundSeconds), sequence_++}] = std::make_shared<Job>(Job{std::move(run)});
  return Task([weak = std::weak_ptr<Job>(job)] {
    if (auto cancelled = weak.lock()) cancelled->cancelled = true;
  });
}

void VirtualScheduler::dropCancelled() {
  while (!queue_.empty() && queue_.begin()->second->cancelled) queue_.erase(queue_.begin());
}

std::optional<double> VirtualScheduler::nextDue() {
  dropCancelled();
  if (queue_.empty()) return std::nullopt;
  return queue_.begin()->first.first;
}

void VirtualScheduler::advance(double seconds) {
  const double end = instant(uptime_ + seconds);
  int runsAtThisInstant = 0;
  for (auto due = nextDue(); due && *due <= end; due = nextDue()) {
    const std::shared_ptr<Job> job = queue_.begin()->second;
    queue_.erase(queue_.begin());
    runsAtThisInstant = *due == uptime_ ? runsAtThisInstant + 1 : 0;
    if (runsAtThisInstant > 1'000'000) {
      std::fputs("VirtualScheduler: work at one instant never ends\n", stderr);
      std::abort();
    }
    uptime_ = *due;
    if (lastWakeUp_ != uptime_) ++wakeUps_;
    lastWakeUp_ = uptime_;
    // Entered again before it runs, so that it can cancel itself. From the start, so that no error adds up.
    if (job->period > 0) {
      const double next = job->start + static_cast<double>(++job->runs + 1) * job->period;
      queue_[{instant(next), sequence_++}] = job;
    }
    job->work();
  }
  uptime_ = end;
}

}  // namespace tarnwick
