#include "views/InputMenu.h"

#include <algorithm>

#include "base/L10n.h"
#include "ui/Dynamic.h"
#include "ui/Menu.h"

namespace tarnwick {

using namespace ui;

namespace {

std::vector<MenuItem> items(AudioService& audio) {
  std::vector<MenuItem> items;
  for (const AudioDevice& device : *audio.inputs) {
    items.push_back({.title = device.name,
        .action = [&audio, id = device.id] { audio.selectInput(id); },
        .checked = device.id == audio.inputID});
  }
  return items;
}

View style(View label, bool pressed, bool hovering) {
  return label.foreground(white(pressed || hovering ? 0.85 : 0.6))
      .padding(4)
      .contentShape(RoundedRectangle(6))
      .animation(easeOut(0.15), hovering);
}

}  // namespace

View inputMenu(AudioService& audio) {
  return observing([&audio] {
    const std::vector<AudioDevice>& inputs = audio.inputs;
    const auto current = std::ranges::find(inputs, audio.inputID.get(), &AudioDevice::id);
    const std::string input = tr("Input", "Entrée");
    const std::string name = current == inputs.end() ? input : current->name;
    const View label =
        HStack({.spacing = 5}, {Symbol("mic"), Text(name), Symbol("chevron.down").font({8, Weight::bold})})
            .font({10, Weight::medium, Design::rounded});
    return MenuButton({.name = input + ": " + name, .label = label, .style = style, .items = [&audio] {
                         return items(audio);
                       }});
  });
}

}  // namespace tarnwick
