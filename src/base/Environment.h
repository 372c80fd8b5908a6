#pragma once
#include <cstdlib>
#include <string_view>

namespace tarnwick {

/// An environment variable; empty when it is not set.
inline std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace tarnwick
