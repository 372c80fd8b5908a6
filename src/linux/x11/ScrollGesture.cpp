#include "linux/x11/ScrollGesture.h"

namespace tarnwick {

ScrollGesture::ScrollGesture(Scheduler& scheduler, std::function<bool(const ScrollEvent&)> receive)
    : scheduler_(scheduler), receive_(std::move(receive)) {}

bool ScrollGesture::step(ScrollEvent event) {
  if (!event.precise) return receive_(event);
  const double time = scheduler_.uptime();
  // The timer may be late on a busy machine.
  if (running_ && time - lastStep_ >= pause) end();
  event.phase = running_ ? ScrollEvent::Phase::changed : ScrollEvent::Phase::began;
  lastStep_ = time;
  inverted_ = event.directionInverted;
  if (!running_) {
    running_ = true;
    waitForPause(pause);
  }
  return receive_(event);
}

void ScrollGesture::waitForPause(double seconds) {
  // One timer a pause, not one a step: a trackpad reports over a hundred of them a second.
  ending_ = scheduler_.after(seconds, [this] {
    const double left = lastStep_ + pause - scheduler_.uptime();
    if (left > 0.001) {
      waitForPause(left);
    } else {
      end();
    }
  });
}

void ScrollGesture::end() {
  running_ = false;
  ending_.cancel();
  receive_({.phase = ScrollEvent::Phase::ended, .precise = true, .directionInverted = inverted_});
}

}  // namespace tarnwick
