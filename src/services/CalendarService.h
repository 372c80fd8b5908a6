#pragma once
#include <functional>

#include "base/ObservableObject.h"
#include "base/Records.h"

namespace tarnwick {

/// The user's calendar. It does not read it yet, so nothing is ever announced.
class CalendarService : public ObservableObject {
 public:
  /// Asks to present a banner for a number of seconds.
  std::function<void(const Banner&, double)> onBanner;

  void start() {}
};

}  // namespace tarnwick
