#pragma once
#include "base/Transient.h"
#include "ui/View.h"

namespace tarnwick {

/// What an indicator is about: its symbol and its name.
ui::View transientLeft(const Transient& transient);

}  // namespace tarnwick
