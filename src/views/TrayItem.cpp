#include "views/TrayItem.h"

#include "base/DisplayText.h"
#include "base/L10n.h"
#include "base/LastPathComponent.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "ui/Menu.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr double iconSize = 46, nameWidth = 70, inset = 6;
static_assert(trayItemWidth == nameWidth + 2 * inset);
/// Of what is gone, and of what stands in for an icon.
constexpr double dimmed = 0.35;

View icon(const FileLook& look, bool hovering) {
  const View picture =
      look.icon ? ImageView(*look.icon).contentTransition(ContentTransition::opacity)
                : Symbol("doc.fill").font({36}).foreground(white(dimmed));
  return Group(picture)
      .frame({.width = iconSize, .height = iconSize})
      .shadow(black(0.4), hovering ? 6 : 2, {0, hovering ? 3.0 : 1.0});
}

View removeButton(const std::string& name, std::function<void()> remove) {
  // The cross is cut out of the disc: something dark has to be behind it.
  const View disc = Symbol("xmark.circle.fill").font({14}).background(Circle().fill(black(0.8)).padding(2));
  return Button({.name = name, .label = disc.contentShape(Circle()), .action = std::move(remove)})
      .transition(Transition::scale(0.00001).combined(Transition::opacity()));
}

std::vector<MenuItem> menu(const FilePath& file, TrayStore& tray, TrayFiles& files, bool isGone) {
  std::vector<MenuItem> items;
  if (isGone) {
    items.push_back({.title = tr("File not found", "Fichier introuvable"), .enabled = false});
    items.push_back(MenuItem::separator());
  } else {
    items.push_back({.title = tr("Open", "Ouvrir"), .action = [=, &files] { files.open(file); }});
    items.push_back({.title = tr("Show in File Manager", "Afficher dans le gestionnaire de fichiers"),
        .action = [=, &files] { files.reveal(file); }});
  }
  items.push_back({.title = tr("Remove", "Retirer"), .action = [=, &tray] { tray.remove(file); }});
  return items;
}

}  // namespace

View trayItem(const FilePath& file, TrayStore& tray, TrayFiles& files) {
  return stateful(false, [file, &tray, &files](State<bool> hovering) {
    const FileLook look = files.look(file);
    const std::string name = displayText(lastPathComponent(file));
    const auto remove = [file, &tray] { tray.remove(file); };
    View cross;
    if (hovering) cross = removeButton(tr("Remove", "Retirer"), remove);
    return VStack({.spacing = 4},
        {icon(look, hovering),
            Text(name)
                .font({10, Weight::medium})
                .foreground(white(0.8))
                .truncated(Truncation::middle)
                .frame({.width = nameWidth})})
        .opacity(look.isGone ? dimmed : 1)
        .padding(inset)
        .contentShape(RoundedRectangle(12))
        // Without what follows: the picture of the drag.
        .dragsFiles(
            [file, isGone = look.isGone] { return isGone ? std::vector<FilePath>() : std::vector{file}; })
        .background(RoundedRectangle(12).fill(white(hovering ? 0.09 : 0)))
        .overlay(ZStack(UnitPoint::topTrailing, {cross}), UnitPoint::topTrailing)
        .scaleEffect(hovering ? 1.05 : 1)
        .animation(spring(0.25, 0.65), hovering.get())
        .onHover(hovering)
        .onDoubleTap([file, &files] { files.open(file); })
        .onKey(Key::erase, remove)
        .contextMenu([file, &tray, &files] { return menu(file, tray, files, files.look(file).isGone); })
        .accessibility(
            Role::button, look.isGone ? name + tr(", file not found", ", fichier introuvable") : name)
        .frame({.maxHeight = infinity});
  });
}

}  // namespace tarnwick
