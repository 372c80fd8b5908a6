#pragma once
#include <optional>

#include "base/Animation.h"
#include "ui/Effects.h"

namespace tarnwick::ui {

/// How a view enters and leaves: it comes from the `insertion` effects to none, and goes to the `removal`
/// ones.
struct Transition {
  Effects insertion;
  Effects removal;
  /// Without an animation of its own a side runs along the one of the commit, or not at all.
  std::optional<Animation> insertionAnimation = {};
  std::optional<Animation> removalAnimation = {};
  /// The view whose place the new one takes leaves by this transition, too, instead of by its own: for moves
  /// with a direction that is only known when the move happens.
  bool governsPredecessor = false;

  /// Fades.
  static Transition opacity();
  /// Grows from and shrinks to `scale` about `anchor`.
  static Transition scale(double scale, UnitPoint anchor = UnitPoint::center);
  /// Both at the same time; the other's animations win where it has some.
  Transition combined(const Transition& other) const;
  /// This transition, with `governsPredecessor` set.
  Transition andPredecessor() const;
};

}  // namespace tarnwick::ui
