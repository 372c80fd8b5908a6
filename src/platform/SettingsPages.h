#pragma once

namespace tarnwick {

/// Pages of the desktop's own settings: the keyboard's shortcuts, and calendars or the accounts they are in.
enum class SettingsPage { keyboard, calendars };

class SettingsPages {
 public:
  virtual ~SettingsPages() = default;
  /// There is such a page on this desktop.
  virtual bool has(SettingsPage page) const = 0;
  virtual void open(SettingsPage page) = 0;
};

}  // namespace tarnwick
