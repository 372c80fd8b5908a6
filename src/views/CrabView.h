#pragma once
#include <vector>

#include "base/Color.h"
#include "base/CrabMood.h"
#include "base/Geometry.h"
#include "ui/View.h"

namespace tarnwick {

/// The mascot's colour.
inline constexpr Color crabOrange{0.85, 0.47, 0.34};

/// One square of the mascot on its grid of 16 by 10 cells. The mascot as a whole sways and hops, so places
/// are no whole numbers.
struct CrabCell {
  double column = 0, row = 0;
  bool black = false;
  friend bool operator==(const CrabCell&, const CrabCell&) = default;
};

/// The mascot at a moment, given in seconds since any fixed instant.
std::vector<CrabCell> crabCells(CrabMood mood, double seconds);

/// Where a cell goes on a canvas of that size, in points: squares as large as fit, the grid centred.
Rect crabCellRect(const CrabCell& cell, Size canvas);

/// The pixel-art mascot, as large as fits. It moves except while idle.
ui::View crabView(CrabMood mood);

}  // namespace tarnwick
