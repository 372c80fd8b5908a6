#pragma once
#include <optional>
#include <vector>

#include "base/Animation.h"

namespace tarnwick::ui {

/// Numbers that are shown on their way to their targets.
class AnimatedValues {
 public:
  AnimatedValues() = default;
  explicit AnimatedValues(std::vector<double> values) : target_(values), presented_(std::move(values)) {}

  /// Sends each number that differs from its target so far to the new one along `animation` (at once without
  /// one). Springs carry on with the speed that the number has. A different count of numbers takes effect at
  /// once.
  void set(const std::vector<double>& target, const std::optional<Animation>& animation, double now);
  /// Takes effect at once and ends all motion.
  void jump(std::vector<double> values);
  /// Sets out from `values`, towards the same targets.
  void startFrom(const std::vector<double>& values, const std::optional<Animation>& animation, double now);

  /// Moves to `now`. @return true when a presented number changed.
  bool update(double now);
  bool isMoving() const { return !motions_.empty(); }
  /// Whether all of its motion goes on for ever.
  bool onlyRepeats() const;
  const std::vector<double>& target() const { return target_; }
  const std::vector<double>& presented() const { return presented_; }

 private:
  std::vector<double> target_;
  std::vector<double> presented_;
  /// Empty at rest, else one per number.
  std::vector<std::optional<Motion>> motions_;
};

}  // namespace tarnwick::ui
