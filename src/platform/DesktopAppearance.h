#pragma once
#include <optional>
#include <string>

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
  /// The name of the icon theme; empty: not told.
  Observed<std::string> iconTheme{*this};
};

}  // namespace tarnwick
