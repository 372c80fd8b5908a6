#include "showcase/memory/VirtualScheduler.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace tarnwick {
namespace {

/// Whole nanoseconds: sums of intervals that mean the same instant are the same instant.
double instant(double seconds) { return std::round(seconds * 1e9) / 1e9; }

}  // namespace

Task VirtualScheduler::schedule(double seconds, Job given) {
  auto job = std::make_shared<Job>(std::move(given));
  queue_[{instant(uptime_ + std::max(seconds, 0.0)), sequence_++}] = job;
  return Task([weak = std::weak_ptr<Job>(job)] {
    if (auto cancelled = weak.lock()) cancelled->cancelled = true;
  });
}

Task VirtualScheduler::after(double seconds, Work work) { return schedule(seconds, {std::move(work)}); }

Task VirtualScheduler::at(Date date, Work work) {
  return schedule(secondsUntil(date), {.work = std::move(work), .date = date});
}

double VirtualScheduler::secondsUntil(Date date) const {
  const double seconds = std::max(date - now(), 0.0);
  // Rounded, it might come out a moment too early.
  return now() + instant(seconds) < date ? seconds + 1e-6 : seconds;
}

void VirtualScheduler::setClock(double seconds) {
  clockSetBy_ = seconds;
  for (auto& [key, job] : std::exchange(queue_, {})) {
    const double due = job->date ? instant(uptime_ + secondsUntil(*job->date)) : key.first;
    queue_[{due, key.second}] = job;
  }
}

Task VirtualScheduler::every(double seconds, Work work) {
  return schedule(seconds, {std::move(work), uptime_, seconds});
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
