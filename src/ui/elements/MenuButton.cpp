#include "ui/Dynamic.h"
#include "ui/Menu.h"

namespace tarnwick::ui {

View MenuButton(MenuButtonOptions options) {
  return stateful(false, [o = std::move(options)](State<bool> hovering) {
    return stateful(false, [=](State<bool> pressed) {
      return (o.style ? o.style(o.label, pressed, hovering) : o.label)
          .onHover(hovering)
          .onPress(pressed)
          .menu(o.items)
          .accessibility(Role::menuButton, o.name);
    });
  });
}

}  // namespace tarnwick::ui
