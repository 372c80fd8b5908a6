#pragma once
#include <QColor>
#include <QPalette>
#include <QString>

#include "platform/DesktopAppearance.h"

namespace tarnwick {

/// The settings window's colours, as the desktop is set.
struct SettingsTheme {
  explicit SettingsTheme(const DesktopAppearance& appearance);

  QColor window, card, line, text, secondary, accent, control, track, allowed, problem;

  QPalette palette() const;
  /// Of all that is no switch.
  QString styleSheet() const;
};

}  // namespace tarnwick
