#include "ui/Button.h"

#include "ui/Dynamic.h"

namespace tarnwick::ui {

View Button(ButtonOptions options) {
  return stateful(false, [o = std::move(options)](State<bool> hovering) {
    return stateful(false, [=](State<bool> pressed) {
      const View button =
          (o.style ? o.style(o.label, pressed, hovering) : o.label)
              .onHover(hovering)
              .onPress(pressed)
              .onTap(o.action)
              .accessibility(Role::button, o.name);
      return o.checked ? button.accessibilityChecked(*o.checked) : button;
    });
  });
}

}  // namespace tarnwick::ui
