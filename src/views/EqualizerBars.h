#pragma once
#include "ui/View.h"

namespace tarnwick {

/// Bars that dance while music plays and lie low while it does not. They take the height that they are given.
ui::View equalizerBars(Color color, bool playing, int count);

/// The height of a playing bar in relation to the whole, at a moment given in seconds since any fixed
/// instant.
double equalizerLevel(int bar, double seconds);

}  // namespace tarnwick
