#pragma once
#include <functional>
#include <optional>

namespace tarnwick {

/// How a value travels to its new target: a timing curve or a spring, with a delay and optional repetition.
struct Animation {
  enum class Kind { linear, easeIn, easeOut, easeInOut, spring };

  Kind kind = Kind::easeInOut;
  /// Seconds; of a timing curve.
  double duration = 0.35;
  /// Seconds; of a spring: the period that it would swing with if nothing damped it.
  double response = 0.5;
  /// Of a spring: 1 does not overshoot, less does.
  double dampingFraction = 1;
  /// Seconds before it sets out.
  double delay = 0;
  /// Starts again from the beginning, without reversing, until the value is set anew.
  bool forever = false;

  constexpr Animation delayed(double seconds) const {
    Animation copy = *this;
    copy.delay += seconds;
    return copy;
  }
  constexpr Animation repeatingForever() const {
    Animation copy = *this;
    copy.forever = true;
    return copy;
  }
  friend constexpr bool operator==(const Animation&, const Animation&) = default;
};

constexpr Animation spring(double response, double dampingFraction) {
  return {.kind = Animation::Kind::spring, .response = response, .dampingFraction = dampingFraction};
}
constexpr Animation linear(double seconds) { return {.kind = Animation::Kind::linear, .duration = seconds}; }
constexpr Animation easeIn(double seconds) { return {.kind = Animation::Kind::easeIn, .duration = seconds}; }
constexpr Animation easeOut(double seconds) {
  return {.kind = Animation::Kind::easeOut, .duration = seconds};
}
constexpr Animation easeInOut(double seconds) {
  return {.kind = Animation::Kind::easeInOut, .duration = seconds};
}

/// Anything that grows the notch: expanding, a banner, a new transient, the start of a file drag.
inline constexpr Animation notchOpen = spring(0.46, 0.72);
/// Anything that shrinks it.
inline constexpr Animation notchClose = spring(0.34, 0.92);
/// Hover on and off.
inline constexpr Animation notchHover = spring(0.3, 0.62);

/// A value on its way: where it set out, with which speed, where to, and how.
struct Motion {
  double from = 0;
  double to = 0;
  /// Units per second at the start; only springs carry it over.
  double velocity = 0;
  /// Uptime in seconds at which it was set in motion (before the delay).
  double start = 0;
  Animation animation;

  struct Sample {
    double value;
    double velocity;
  };
  /// Position and speed at the given uptime.
  Sample at(double time) const;
  /// True once the value has come to rest; never for a repeating animation.
  bool finishedAt(double time) const;
};

/// Runs `change` so that everything it alters is shown along `animation`. May be nested: the inner animation
/// is for what the inner change alters.
void withAnimation(const Animation& animation, const std::function<void()>& change);

/// What views need to know of `withAnimation`.
namespace transaction {

/// The animation of the innermost `withAnimation` that is running, or none.
const std::optional<Animation>& current();

/// Somebody who shows state: told when changes made so far must be taken over, and with which animation.
class Committer {
 public:
  Committer();
  Committer(const Committer&) = delete;
  Committer& operator=(const Committer&) = delete;
  virtual ~Committer();
  /// Everything altered since the last call belongs to `animation` (none: takes effect at once). Called when
  /// a `withAnimation` starts (for what came before it) and ends.
  virtual void commit(const std::optional<Animation>& animation) = 0;
};

}  // namespace transaction
}  // namespace tarnwick
