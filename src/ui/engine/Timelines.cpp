#include "ui/engine/Timelines.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::ui {
namespace {

/// Seconds that a beat may wait for another one. Nobody sees that much of a hundredth's delay.
constexpr double patience = 0.02;
/// A timer that is a little early would find the beat before.
constexpr double margin = 0.001;

double beatAfter(double time, double interval) {
  return (std::floor((time + margin) / interval) + 1) * interval;
}

}  // namespace

void Timelines::run(Node& node, double interval) {
  const auto found = entries_.find(&node);
  if (found != entries_.end() && found->second.interval == interval) return;
  entries_[&node] = {interval, beatAfter(scheduler_.now().secondsSince1970, interval)};
  schedule();
}

void Timelines::stop(Node& node) {
  if (entries_.erase(&node)) schedule();
}

void Timelines::schedule() {
  if (entries_.empty()) {
    next_ = {};
    return;
  }
  double first = INFINITY;
  for (const auto& [node, entry] : entries_) first = std::min(first, entry.due);
  double together = first;
  for (const auto& [node, entry] : entries_) {
    if (entry.due <= first + patience) together = std::max(together, entry.due);
  }
  next_ = scheduler_.after(std::max(0.0, together - scheduler_.now().secondsSince1970) + margin,
                           [this] { beat(); });
}

void Timelines::beat() {
  const double now = scheduler_.now().secondsSince1970;
  std::vector<Node*> nodes;
  for (auto& [node, entry] : entries_) {
    // A clock that was set back puts the beat too far away.
    if (entry.due > now && entry.due <= now + entry.interval) continue;
    entry.due = beatAfter(now, entry.interval);
    nodes.push_back(node);
  }
  schedule();
  beat_(nodes);
}

}  // namespace tarnwick::ui
