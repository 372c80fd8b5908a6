#include "views/TrayView.h"

#include <memory>

#include "base/L10n.h"
#include "ui/Dynamic.h"
#include "ui/Menu.h"
#include "views/ButtonStyles.h"
#include "views/TrayItem.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Animation listChange = spring(0.35, 0.7), clearing = spring(0.35, 0.8),
                    targeting = spring(0.3, 0.7);
/// Of the border, in points.
constexpr double dash = 6, gap = 5;

View border(const Shape& shape, bool active) {
  // What is just there has nowhere to march from.
  return stateful(false, [=](State<bool> appeared) {
    const bool marches = active && appeared;
    const View line = shape.stroke(white(),
        {.width = 1.5, .inside = true, .dash = {dash, gap}, .dashPhase = marches ? 2 * (dash + gap) : 0});
    return line.animation(marches ? easeInOut(0.6).repeatingForever() : easeOut(0.2), marches)
        .onAppear([appeared] { appeared.set(true); });
  });
}

View dropZone(bool active, bool targeted) {
  const Shape shape = RoundedRectangle(16);
  return ZStack(UnitPoint::center,
      {shape.fill(white(targeted ? 0.08 : 0.02)),
          Group(border(shape, active)).opacity(active ? 0.56 : 0.14).animation(easeOut(0.2), active)});
}

View invitation(bool active, bool targeted) {
  const std::string text =
      targeted ? tr("Drop to add", "Lâche pour ajouter") : tr("Drop files here", "Dépose des fichiers ici");
  return VStack({.spacing = 8},
      {
          Symbol("tray.and.arrow.down.fill").font({24}).bounce(targeted).offset({0, targeted ? 3.0 : 0.0}),
          Text(text).font({12, Weight::medium}).contentTransition(ContentTransition::opacity),
      })
      .foreground(white(active ? 0.8 : 0.45))
      .frame({.maxWidth = infinity, .maxHeight = infinity});
}

View shelf(TrayStore& tray, TrayFiles& files) {
  const auto items = std::make_shared<const std::vector<FilePath>>(tray.items.get());
  const Transition pop = Transition::scale(0.5).combined(Transition::opacity());
  return ScrollView(Axis::horizontal,
      LazyHStack(
          {.count = items->size(),
              .length = trayItemWidth,
              .spacing = 8,
              .key = [items](size_t i) { return (*items)[i]; },
              .item = [items, pop, &tray, &files](
                          size_t i) { return trayItem((*items)[i], tray, files).transition(pop); }})
          .padding(Edge::horizontal, 12))
      .animation(listChange, tray.items.get())
      .arrowKeys(Axis::horizontal)
      .accessibility(Role::list, tr("Files", "Fichiers"));
}

View symbolLabel(const std::string& symbol) { return Symbol(symbol).font({14}).foreground(white(0.7)); }

View sendButton(const TrayStore& tray, TrayFiles& files) {
  const std::string name = tr("Send to a Device", "Envoyer vers un appareil");
  const auto items = [&tray, &files] {
    std::vector<MenuItem> menu;
    for (const SharingTarget& target : files.targets()) {
      menu.push_back(
          {.title = target.name, .action = [&tray, &files, id = target.id] { files.send(tray.items, id); }});
    }
    return menu;
  };
  return MenuButton(
      {.name = name,
          .label = symbolLabel("airplayaudio"),
          .style = notchButtonStyle(34, 1.08),
          .items = items})
      .tooltip(name);
}

View clearButton(TrayStore& tray) {
  const std::string name = tr("Clear", "Vider");
  return Button(
      {.name = name,
          .label = symbolLabel("trash"),
          .style = notchButtonStyle(34, 1.08),
          .action = [&tray] { withAnimation(clearing, [&] { tray.clear(); }); }})
      .tooltip(name);
}

View files(NotchModel& model) {
  return HStack({},
      {shelf(model.tray, model.trayFiles),
          VStack({.spacing = 4}, {sendButton(model.tray, model.trayFiles), clearButton(model.tray)})
              .padding(Edge::trailing, 8)})
      .frame({.maxWidth = infinity, .maxHeight = infinity});
}

}  // namespace

View trayView(NotchModel& model) {
  return observing([&model] {
    const bool targeted = model.isDropTargeted, active = targeted || model.isDraggingFiles;
    const View content =
        model.tray.items->empty()
            ? invitation(active, targeted).id("empty").transition(Transition::opacity())
            : files(model).id("files").transition(Transition::opacity());
    return ZStack(UnitPoint::center, {content})
        .frame({.maxWidth = infinity, .maxHeight = infinity})
        .background(dropZone(active, targeted))
        .scaleEffect(targeted ? 1.015 : 1)
        .animation(targeting, targeted);
  });
}

}  // namespace tarnwick
