#include "views/DeviceRow.h"

#include "ui/Button.h"

namespace tarnwick {

using namespace ui;

namespace {

View label(const AudioDevice& device, bool selected, Color accent) {
  const View icon =
      Symbol(device.symbol())
          .font({11, Weight::semibold})
          .frame({.width = 24, .height = 24})
          .background(Circle().fill(selected ? accent : white(0.1)));
  View checkmark;
  if (selected) {
    checkmark =
        Symbol("checkmark")
            .font({10, Weight::bold})
            .foreground(white(0.7))
            .transition(Transition::scale(0.00001).combined(Transition::opacity()));
  }
  return HStack({.spacing = 9},
      {
          icon,
          Text(device.name).font({12, selected ? Weight::semibold : Weight::medium, Design::rounded}),
          Spacer(),
          checkmark,
      })
      .padding(Edge::horizontal, 9)
      .frame({.height = 30})
      .animation(spring(0.3, 0.7), selected);
}

}  // namespace

View deviceRow(const AudioDevice& device, bool selected, Color accent, std::function<void()> action) {
  return Button({.name = device.name,
      .label = label(device, selected, accent),
      .style =
          [](View content, bool, bool hovering) {
            return content.background(RoundedRectangle(9).fill(white(hovering ? 0.08 : 0)))
                .contentShape(RoundedRectangle(9))
                .animation(easeOut(0.15), hovering);
          },
      .action = std::move(action),
      .checked = selected});
}

}  // namespace tarnwick
