#pragma once
#include <string>

#include "base/Color.h"
#include "base/Transient.h"

namespace tarnwick {

/// The symbol of a hardware indicator at a level of 0…1.
std::string hudSymbol(HUDKind kind, double level);

/// The colour of its level: white for the brightness; for the volume from green over orange to red.
Color hudTint(HUDKind kind, double level);

}  // namespace tarnwick
