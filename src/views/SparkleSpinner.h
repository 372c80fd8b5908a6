#pragma once
#include "ui/View.h"

namespace tarnwick {

/// A sparkle that grows and shrinks once a second: something is being worked on. 18 points wide.
ui::View sparkleSpinner(Color color);

}  // namespace tarnwick
