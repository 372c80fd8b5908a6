#pragma once

namespace tarnwick {

/// Touch feedback of the pointing device.
class HapticPerformer {
 public:
  virtual ~HapticPerformer() = default;
  /// One light tap, now.
  virtual void performAlignment() = 0;
};

}  // namespace tarnwick
