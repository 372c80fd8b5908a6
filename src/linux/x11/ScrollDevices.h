#pragma once
#include <map>

#include "linux/x11/X11Connection.h"

namespace tarnwick {

/// How the user has set up the devices that scroll, as their driver tells; remembered until a setting
/// changes.
class ScrollDevices {
 public:
  struct Traits {
    /// The content follows the fingers.
    bool natural = false;
    /// False for a wheel, although its clicks may come in fractions. Unknown drivers are taken at their word.
    bool smooth = true;
    /// Points that the fingers travel for what counts as one click of a wheel.
    double pointsPerClick = 15;
  };

  explicit ScrollDevices(X11Connection& connection);

  /// @param device its number in the input extension.
  const Traits& traits(uint16_t device);

 private:
  Traits read(uint16_t device) const;
  std::vector<uint8_t> property(uint16_t device, const char* name) const;

  X11Connection& connection_;
  std::map<uint16_t, Traits> traits_;
  Subscription events_;
};

}  // namespace tarnwick
