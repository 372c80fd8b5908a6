#pragma once
#include "base/AppSettings.h"
#include "platform/HapticPerformer.h"

namespace tarnwick {

/// Touch feedback as far as the user wants it.
class HapticFeedback {
 public:
  HapticFeedback(const AppSettings& settings, HapticPerformer& performer)
      : settings_(settings), performer_(performer) {}
  void tap() const {
    if (settings_.haptics) performer_.performAlignment();
  }

 private:
  const AppSettings& settings_;
  HapticPerformer& performer_;
};

}  // namespace tarnwick
