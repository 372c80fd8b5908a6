#include "views/BrightnessRow.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/L10n.h"
#include "base/Observed.h"
#include "ui/Dynamic.h"
#include "views/HUDAppearance.h"
#include "views/SliderRow.h"

namespace tarnwick {

using namespace ui;

namespace {

/// The brightness while somebody looks.
class ShownBrightness : public ObservableObject {
 public:
  explicit ShownBrightness(DisplayBrightness& display)
      : display_(display), value(*this, display.current()), availability_(display.observe([this] {
          follow();
          look();
        })) {
    follow();
  }

  void set(double wanted) {
    value = wanted;
    display_.set(wanted);
  }

 private:
  void follow() {
    changes_ = display_.follow([this] { look(); });
  }
  void look() {
    const std::optional<double> now = display_.current(), &shown = value;
    // What was asked for need not be what the display makes of it: it has few units.
    if (now && shown && std::abs(*now - *shown) <= display_.unit() / 2) return;
    value = now;
  }

  DisplayBrightness& display_;

 public:
  Observed<std::optional<double>> value;

 private:
  Subscription availability_, changes_;
};

}  // namespace

View brightnessRow(DisplayBrightness& brightness) {
  return dynamic({
      .makeState = [&brightness] { return std::make_shared<ShownBrightness>(brightness); },
      .body =
          [&brightness](const std::shared_ptr<void>& state, Date) {
            auto* shown = static_cast<ShownBrightness*>(state.get());
            const std::optional<double>& value = shown->value;
            if (!value) return View();
            const std::string name = tr("Brightness", "Luminosité");
            return sliderRow({.name = name,
                .icon = hudSymbol(HUDKind::brightness, *value),
                .iconHelp = name,
                .value = *value,
                .tint = colors::yellow,
                .step = std::max(0.05, brightness.unit()),
                .onChange = [shown](double wanted) { shown->set(wanted); }});
          },
  });
}

}  // namespace tarnwick
