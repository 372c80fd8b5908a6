#pragma once
#include "platform/HapticPerformer.h"

namespace tarnwick {

/// Linux desktops have no touch feedback in their pointing devices that a program could ask for: nothing
/// happens.
class NoHaptics : public HapticPerformer {
 public:
  void performAlignment() override {}
};

}  // namespace tarnwick
