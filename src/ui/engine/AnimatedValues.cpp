#include "ui/engine/AnimatedValues.h"

#include <algorithm>

namespace tarnwick::ui {

void AnimatedValues::set(
    const std::vector<double>& target, const std::optional<Animation>& animation, double now) {
  if (target.size() != target_.size()) return jump(target);
  for (size_t i = 0; i < target.size(); ++i) {
    if (target[i] == target_[i]) continue;
    target_[i] = target[i];
    if (!animation) {
      presented_[i] = target[i];
      if (!motions_.empty()) motions_[i].reset();
      continue;
    }
    if (motions_.empty()) motions_.resize(target.size());
    const Motion::Sample here = motions_[i] ? motions_[i]->at(now) : Motion::Sample{presented_[i], 0};
    motions_[i] = Motion{here.value, target[i], here.velocity, now, *animation};
  }
}

void AnimatedValues::jump(std::vector<double> values) {
  motions_.clear();
  presented_ = values;
  target_ = std::move(values);
}

void AnimatedValues::startFrom(
    const std::vector<double>& values, const std::optional<Animation>& animation, double now) {
  const std::vector<double> target = target_;
  jump(values);
  set(target, animation, now);
}

bool AnimatedValues::onlyRepeats() const {
  return std::ranges::all_of(
      motions_, [](const auto& motion) { return !motion || motion->animation.forever; });
}

bool AnimatedValues::update(double now) {
  if (motions_.empty()) return false;
  bool changed = false, moving = false;
  for (size_t i = 0; i < motions_.size(); ++i) {
    if (!motions_[i]) continue;
    const bool finished = motions_[i]->finishedAt(now);
    const double value = finished ? target_[i] : motions_[i]->at(now).value;
    changed |= value != presented_[i];
    presented_[i] = value;
    if (finished) motions_[i].reset();
    moving |= !finished;
  }
  if (!moving) motions_.clear();
  return changed;
}

}  // namespace tarnwick::ui
