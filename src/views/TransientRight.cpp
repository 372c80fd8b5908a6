#include "views/TransientRight.h"

#include "base/L10n.h"
#include "views/BatteryLabel.h"
#include "views/BatteryRing.h"
#include "views/HUDAppearance.h"
#include "views/LevelBar.h"

namespace tarnwick {

using namespace ui;

namespace {

View label(std::string text, Color color) {
  return Text(std::move(text)).font({11, Weight::semibold}).foreground(color);
}

View content(const Transient::Hud& hud) {
  const double level = hud.kind == HUDKind::mute ? 0 : hud.value;
  return levelBar(level, hudTint(hud.kind, hud.value)).frame({.width = 74, .height = 6});
}

View content(const Transient::Power& power) { return batteryLabel(power.level, power.charging); }

View content(const Transient::LowPowerMode& mode) {
  return mode.on ? label(tr("On", "Activé"), colors::yellow) : label(tr("Off", "Désactivé"), white(0.6));
}

View content(const Transient::Device& device) {
  if (!device.connected) return label(tr("Disconnected", "Déconnecté"), white(0.5));
  if (device.battery) return batteryRing(*device.battery);
  return label(tr("Connected", "Connecté"), colors::blue);
}

}  // namespace

View transientRight(const Transient& transient) {
  // The stack stays when what is in it changes: a battery's level that is told later does not enter like
  // news.
  return ZStack(
      UnitPoint::trailing, {std::visit([](const auto& value) { return content(value); }, transient.value)});
}

}  // namespace tarnwick
