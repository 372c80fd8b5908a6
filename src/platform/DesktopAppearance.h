#pragma once
#include <optional>

#include "base/Color.h"
#include "base/Observed.h"

namespace tarnwick {

/// How the user has set the desktop to look. What nobody tells (yet) is none and false.
class DesktopAppearance : public ObservableObject {
 public:
  virtual ~DesktopAppearance() = default;

  Observed<std::optional<Color>> accentColor{*this};
  /// Windows should be dark.
  Observed<bool> prefersDark{*this};
};

}  // namespace tarnwick
