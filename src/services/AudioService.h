#pragma once
#include "base/ObservableObject.h"

namespace tarnwick {

/// The machine's audio devices. It does not follow them yet, and no view asks it for anything.
class AudioService : public ObservableObject {
 public:
  void start() {}
};

}  // namespace tarnwick
