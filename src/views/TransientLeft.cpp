#include "views/TransientLeft.h"

#include "base/L10n.h"
#include "views/HUDAppearance.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Font textFont{11, Weight::medium};

View label(std::string text, double opacity) {
  return Text(std::move(text)).font(textFont).foreground(white(opacity));
}

View content(const Transient::Hud& hud) {
  const bool brightness = hud.kind == HUDKind::brightness;
  return HStack({.spacing = 7},
      {
          Symbol(hudSymbol(hud.kind, hud.value))
              .font({13, Weight::semibold})
              .contentTransition(ContentTransition::replace)
              .bounce(hud.kind == HUDKind::mute)
              .frame({.width = 22}),
          label(brightness ? tr("Brightness", "Luminosité") : "Volume", 0.6),
      });
}

View content(const Transient::Power& power) {
  return HStack({.spacing = 6},
      {
          Symbol(power.charging ? "bolt.fill" : "powerplug.fill")
              .font(textFont)
              .foreground(power.charging ? colors::green : white(0.7))
              .bounce(power.charging),
          label(power.charging ? tr("Charging", "En charge") : tr("Unplugged", "Débranché"), 0.7),
      });
}

View content(const Transient::LowPowerMode& mode) {
  return HStack({.spacing = 6},
      {
          Symbol("leaf.fill").font(textFont).foreground(mode.on ? colors::yellow : white(0.6)),
          label(tr("Low Power", "Éco. énergie"), 0.7),
      });
}

View content(const Transient::Device& device) {
  return HStack({.spacing = 7},
      {
          Symbol(device.symbol).font({14}).bounce(device.connected),
          label(device.name, 0.75),
      });
}

}  // namespace

View transientLeft(const Transient& transient) {
  return ZStack(
      UnitPoint::leading, {std::visit([](const auto& value) { return content(value); }, transient.value)});
}

}  // namespace tarnwick
