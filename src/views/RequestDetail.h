#pragma once
#include <string>

#include "ui/View.h"

namespace tarnwick {

/// What exactly a session waits for, such as a command, in one line: all of it in the tooltip. Nothing where
/// it is not known.
ui::View requestDetail(const std::string& detail);

}  // namespace tarnwick
