#include "ui/engine/Timelines.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::ui {
namespace {

/// Seconds that a beat may wait for another one. Nobody sees that much of a hundredth's delay.
constexpr double patience = 0.02;
/// A timer that is a little early would find the beat before.
constexpr double margin = 0.001;

/// Never, once it is over.
Date beatAfter(Date now, const Beat& beat) {
  const double number = std::floor((now - beat.origin + margin) / beat.interval) + 1;
  const Date next = beat.origin + number * beat.interval;
  return next > beat.end + margin ? Date::distantFuture() : next;
}

}  // namespace

void Timelines::run(Node& node, const Beat& beat) {
  const auto found = entries_.find(&node);
  if (found != entries_.end() && found->second.beat == beat) return;
  entries_[&node] = {beat, beatAfter(scheduler_.now(), beat)};
  schedule();
}

void Timelines::stop(Node& node) {
  if (entries_.erase(&node)) schedule();
}

void Timelines::schedule() {
  Date first = Date::distantFuture();
  for (const auto& [node, entry] : entries_) first = std::min(first, entry.due);
  if (first == Date::distantFuture()) {
    next_ = {};
    return;
  }
  Date together = first;
  for (const auto& [node, entry] : entries_) {
    if (entry.due <= first + patience) together = std::max(together, entry.due);
  }
  next_ = scheduler_.after(std::max(0.0, together - scheduler_.now()) + margin, [this] { beat(); });
}

void Timelines::beat() {
  const Date now = scheduler_.now();
  std::vector<Node*> nodes;
  for (auto& [node, entry] : entries_) {
    // A clock that was set back puts the beat too far away.
    if (entry.due > now && entry.due <= now + entry.beat.interval) continue;
    if (entry.due == Date::distantFuture() && beatAfter(now, entry.beat) == entry.due) continue;
    entry.due = beatAfter(now, entry.beat);
    nodes.push_back(node);
  }
  schedule();
  beat_(nodes);
}

}  // namespace tarnwick::ui
