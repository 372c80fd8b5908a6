#pragma once
#include "platform/SettingsPages.h"

namespace tarnwick {

/// The settings programs of the desktops, as far as they are installed; the desktop is the one that
/// XDG_CURRENT_DESKTOP names.
class DesktopSettingsPages : public SettingsPages {
 public:
  bool has(SettingsPage page) const override;
  void open(SettingsPage page) override;
};

}  // namespace tarnwick
