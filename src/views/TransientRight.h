#pragma once
#include "base/Transient.h"
#include "ui/View.h"

namespace tarnwick {

/// What an indicator tells: its level or its state.
ui::View transientRight(const Transient& transient);

}  // namespace tarnwick
