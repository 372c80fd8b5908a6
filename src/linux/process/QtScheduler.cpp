#include "linux/process/QtScheduler.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace tarnwick {
namespace {

constexpr double beatInterval = 1;

double nearestBeat(double time) { return std::round(time / beatInterval) * beatInterval; }

std::chrono::milliseconds milliseconds(double seconds) {
  return std::chrono::milliseconds(std::llround(std::max(0.0, seconds) * 1000));
}

}  // namespace

QtScheduler::QtScheduler() {
  clock_.start();
  // Enough that work which hangs (a sound, a folder of the network) does not hold up the rest. Each is there
  // only while it is needed.
  pool_.setMaxThreadCount(8);
  beat_.setTimerType(Qt::PreciseTimer);
  beat_.setSingleShot(true);
  QObject::connect(&beat_, &QTimer::timeout, &context_, [this] { beat(); });
}

QtScheduler::~QtScheduler() { pool_.waitForDone(); }

double QtScheduler::uptime() const { return static_cast<double>(clock_.nsecsElapsed()) * 1e-9; }

Task QtScheduler::ownTimer(double seconds, bool once, Work work) {
  auto* timer = new QTimer(&context_);
  timer->setSingleShot(once);
  timer->setTimerType(seconds < 1 ? Qt::PreciseTimer : Qt::CoarseTimer);
  QObject::connect(timer, &QTimer::timeout, &context_, std::move(work));
  timer->start(milliseconds(seconds));
  return Task([timer] {
    timer->stop();
    timer->deleteLater();  // it may be the one that is calling just now
  });
}

Task QtScheduler::after(double seconds, Work work) { return ownTimer(seconds, true, std::move(work)); }

Task QtScheduler::every(double seconds, Work work) {
  if (seconds < beatInterval) return ownTimer(seconds, false, std::move(work));
  auto entry = std::make_shared<Repeating>(Repeating{std::move(work), seconds, uptime() + seconds});
  repeating_.push_back(entry);
  if (!beating_) awaitNextBeat();
  return Task([this, entry] {
    entry->cancelled = true;
    if (!beating_) awaitNextBeat();
  });
}

void QtScheduler::beat() {
  // The nearest beat is the right one.
  const double end = nearestBeat(uptime()) + beatInterval / 2;
  beating_ = true;
  // What the work adds lands at the end and is not due yet.
  for (const auto& entry : repeating_) {
    if (entry->cancelled || entry->due > end) continue;
    // Beats that a suspended machine has missed are not made up for.
    while (entry->due <= end) entry->due += entry->interval;
    entry->work();
  }
  beating_ = false;
  awaitNextBeat();
}

/// Sleeps through the beats at which nothing is due.
void QtScheduler::awaitNextBeat() {
  repeating_.remove_if([](const auto& entry) { return entry->cancelled; });
  if (repeating_.empty()) return beat_.stop();
  const auto sooner = [](const auto& a, const auto& b) { return a->due < b->due; };
  const double due = (*std::min_element(repeating_.begin(), repeating_.end(), sooner))->due;
  beat_.start(milliseconds(nearestBeat(due) - uptime()));
}

Task QtScheduler::post(Work work) {
  auto cancelled = std::make_shared<bool>(false);
  QMetaObject::invokeMethod(
      &context_,
      [cancelled, work = std::move(work)] {
        if (!*cancelled) work();
      },
      Qt::QueuedConnection);
  return Task([cancelled] { *cancelled = true; });
}

Task QtScheduler::background(Work work, Work thenOnMain) {
  auto cancelled = std::make_shared<bool>(false);
  pool_.start([this, cancelled, work = std::move(work), then = std::move(thenOnMain)]() mutable {
    work();
    QMetaObject::invokeMethod(
        &context_,
        [cancelled, then = std::move(then)] {
          if (!*cancelled && then) then();
        },
        Qt::QueuedConnection);
  });
  return Task([cancelled] { *cancelled = true; });
}

}  // namespace tarnwick
