#include "views/AudioView.h"

#include "base/L10n.h"
#include "platform/DesktopAppearance.h"
#include "ui/Dynamic.h"
#include "views/BrightnessRow.h"
#include "views/DeviceRow.h"
#include "views/HUDAppearance.h"
#include "views/InputMenu.h"
#include "views/SliderRow.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Animation listChange = spring(0.35, 0.8);

View noOutputs() {
  return Text(tr("No output devices", "Aucune sortie audio"))
      .font({11})
      .foreground(white(0.4))
      .padding(Edge::leading, 6)
      .frame({.maxHeight = infinity});
}

View outputList(AudioService& audio, Color accent) {
  Views rows;
  std::vector<uint32_t> ids;
  for (const AudioDevice& device : *audio.outputs) {
    const auto select = [&audio, id = device.id] { audio.selectOutput(id); };
    rows.push_back(
        deviceRow(device, device.id == audio.outputID, accent, select)
            .id(std::to_string(device.id))
            .transition(Transition::opacity()));
    ids.push_back(device.id);
  }
  return ScrollView(Axis::vertical, VStack({.spacing = 2}, rows))
      .animation(listChange, ids)
      .arrowKeys(Axis::vertical)
      .accessibility(Role::list, tr("Output", "Sortie"));
}

View outputs(NotchModel& model) {
  const View header =
      Text(tr("Output", "Sortie"))
          .font({10, Weight::semibold})
          .foreground(white(0.45))
          .padding(Edge::leading, 6);
  return observing([&model, header] {
    const Color accent = model.appearance.accentColor->value_or(colors::blue);
    const View list =
        model.audio.outputs->empty() ? noOutputs().id("none") : outputList(model.audio, accent).id("list");
    return VStack({.spacing = 4, .align = Align::leading}, {header, list.transition(Transition::opacity())})
        .frame({.maxWidth = infinity, .align = UnitPoint::leading});
  });
}

View outputSlider(AudioService& audio) {
  return observing([&audio] {
    const bool muted = audio.muted;
    return sliderRow({.name = "Volume",
        .icon = hudSymbol(muted ? HUDKind::mute : HUDKind::volume, audio.volume),
        .iconHelp = muted ? tr("Unmute", "Réactiver le son") : tr("Mute", "Couper le son"),
        .onIcon = [&audio] { audio.setMuted(!audio.muted); },
        .value = muted ? 0 : audio.volume.get(),
        .tint = hudTint(HUDKind::volume, audio.volume),
        .enabled = audio.outputID != 0,
        .onChange = [&audio](double value) { audio.setVolume(value); }});
  });
}

View inputSlider(AudioService& audio) {
  return observing([&audio] {
    const bool muted = audio.inputMuted;
    return sliderRow({.name = tr("Microphone", "Micro"),
        .icon = muted ? "mic.slash.fill" : "mic.fill",
        .iconHelp =
            muted ? tr("Unmute microphone", "Réactiver le micro") : tr("Mute microphone", "Couper le micro"),
        .onIcon = [&audio] { audio.setInputMuted(!audio.inputMuted); },
        .value = muted ? 0 : audio.inputVolume.get(),
        .enabled = audio.inputID != 0,
        .onChange = [&audio](double value) { audio.setInputVolume(value); }});
  });
}

}  // namespace

View audioView(NotchModel& model) {
  return HStack({.spacing = 16},
      {
          outputs(model),
          Rectangle().fill(white(0.1)).frame({.width = 1}).padding(Edge::vertical, 6),
          VStack({.spacing = 10, .align = Align::leading},
              {
                  outputSlider(model.audio),
                  inputSlider(model.audio),
                  brightnessRow(model.brightness),
                  inputMenu(model.audio),
              })
              .frame({.width = 210}),
      });
}

}  // namespace tarnwick
