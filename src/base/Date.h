#pragma once
#include <compare>
#include <limits>

namespace tarnwick {

/// An instant of wall-clock time, in seconds since 1970-01-01 00:00 UTC. The difference of two dates is in
/// seconds.
struct Date {
  double secondsSince1970 = 0;

  static constexpr Date distantPast() { return {-std::numeric_limits<double>::infinity()}; }
  static constexpr Date distantFuture() { return {std::numeric_limits<double>::infinity()}; }
  /// The current time of the system clock.
  static Date systemNow();

  friend constexpr auto operator<=>(Date, Date) = default;
  friend constexpr double operator-(Date a, Date b) { return a.secondsSince1970 - b.secondsSince1970; }
  friend constexpr Date operator+(Date date, double seconds) { return {date.secondsSince1970 + seconds}; }
  friend constexpr Date operator-(Date date, double seconds) { return {date.secondsSince1970 - seconds}; }
};

}  // namespace tarnwick
