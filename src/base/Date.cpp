#include "base/Date.h"

#include <chrono>

namespace tarnwick {

Date Date::systemNow() {
  return {std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count()};
}

}  // namespace tarnwick
