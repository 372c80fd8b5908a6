#pragma once
#include <string>

namespace tarnwick {

/// A file on this machine: its absolute path.
using FilePath = std::string;

}  // namespace tarnwick
