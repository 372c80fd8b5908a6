#include "ui/Button.h"

#include "ui/Dynamic.h"

namespace tarnwick::ui {

View Button(std::string name, std::function<void()> action, View label, ButtonStyle style) {
  return stateful(false, [=](State<bool> hovering) {
    return stateful(false, [=](State<bool> pressed) {
      return style(label, pressed, hovering)
          .onHover(hovering)
          .onPress(pressed)
          .onTap(action)
          .accessibility(Role::button, name);
    });
  });
}

}  // namespace tarnwick::ui
