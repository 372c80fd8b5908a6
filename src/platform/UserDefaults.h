#pragma once
// The settings in base need this port, so it lives there.
#include "base/UserDefaults.h"
