#include "base/Animation.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace tarnwick {
namespace {

/// A spring counts as at rest when it is this close, relative to the way it had to go.
constexpr double restFraction = 0.0005;

/// Damped harmonic oscillator around 0 in closed form, from `offset` with `velocity`.
Motion::Sample springAt(const Animation& animation, double offset, double velocity, double t) {
  const double omega = 2 * std::numbers::pi / animation.response;
  const double zeta = animation.dampingFraction;
  if (zeta < 1) {
    const double decay = zeta * omega, damped = omega * std::sqrt(1 - zeta * zeta);
    const double b = (velocity + decay * offset) / damped;
    const double e = std::exp(-decay * t), c = std::cos(damped * t), s = std::sin(damped * t);
    const double value = e * (offset * c + b * s);
    return {value, -decay * value + e * damped * (b * c - offset * s)};
  }
  const double b = velocity + omega * offset;
  const double e = std::exp(-omega * t);
  const double value = e * (offset + b * t);
  return {value, e * b - omega * value};
}

/// Cubic Bézier timing curve with end points (0, 0) and (1, 1): y at x, and its slope.
struct Bezier {
  double x1, y1, x2, y2;

  static double curve(double a, double b, double s) {
    return 3 * a * s * (1 - s) * (1 - s) + 3 * b * s * s * (1 - s) + s * s * s;
  }
  static double slope(double a, double b, double s) {
    return 3 * a * (1 - s) * (1 - 3 * s) + 3 * b * s * (2 - 3 * s) + 3 * s * s;
  }
  Motion::Sample at(double x) const {
    double low = 0, high = 1, s = x;
    for (int i = 0; i < 40 && high - low > 1e-9; ++i) {
      s = (low + high) / 2;
      (curve(x1, x2, s) < x ? low : high) = s;
    }
    const double dx = slope(x1, x2, s);
    return {curve(y1, y2, s), dx > 1e-9 ? slope(y1, y2, s) / dx : 0};
  }
};

Motion::Sample timingAt(Animation::Kind kind, double x) {
  switch (kind) {
    case Animation::Kind::easeIn:
      return Bezier{0.42, 0, 1, 1}.at(x);
    case Animation::Kind::easeOut:
      return Bezier{0, 0, 0.58, 1}.at(x);
    case Animation::Kind::easeInOut:
      return Bezier{0.42, 0, 0.58, 1}.at(x);
    default:
      return {x, 1};
  }
}

/// When a spring has settled: the time after which its envelope stays below the rest fraction.
double settlingTime(const Animation& animation) {
  const double omega = 2 * std::numbers::pi / animation.response;
  const double zeta = std::min(animation.dampingFraction, 1.0);
  return -std::log(restFraction) / (zeta * omega) * (zeta > 0.9 ? 1.4 : 1.1);
}

std::vector<transaction::Committer*>& committers() {
  static std::vector<transaction::Committer*> list;
  return list;
}

std::optional<Animation>& currentAnimation() {
  static std::optional<Animation> animation;
  return animation;
}

void commitAll() {
  // By index: a committer may come or go while another one commits.
  for (size_t i = 0; i < committers().size(); ++i) committers()[i]->commit(currentAnimation());
}

}  // namespace

Motion::Sample Motion::at(double time) const {
  double t = time - start - animation.delay;
  if (t < 0) return {from, 0};
  if (animation.kind == Animation::Kind::spring) {
    if (finishedAt(time)) return {to, 0};
    const Sample offset = springAt(animation, from - to, velocity, t);
    return {to + offset.value, offset.velocity};
  }
  if (animation.duration <= 0) return {to, 0};
  if (animation.forever) t = std::fmod(t, animation.duration);
  if (t >= animation.duration) return {to, 0};
  const Sample progress = timingAt(animation.kind, t / animation.duration);
  return {from + (to - from) * progress.value, (to - from) * progress.velocity / animation.duration};
}

bool Motion::finishedAt(double time) const {
  if (animation.forever) return false;
  const double t = time - start - animation.delay;
  return t >= (animation.kind == Animation::Kind::spring ? settlingTime(animation) : animation.duration);
}

void withAnimation(const Animation& animation, const std::function<void()>& change) {
  commitAll();
  struct Restore {
    ~Restore() { currentAnimation() = outer; }
    const std::optional<Animation> outer = currentAnimation();
  } restore;
  currentAnimation() = animation;
  change();
  commitAll();
}

namespace transaction {

const std::optional<Animation>& current() { return currentAnimation(); }

Committer::Committer() { committers().push_back(this); }
Committer::~Committer() { std::erase(committers(), this); }

}  // namespace transaction
}  // namespace tarnwick
