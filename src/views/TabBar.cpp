#include "views/TabBar.h"

#include <algorithm>

#include "base/L10n.h"
#include "ui/Button.h"
#include "ui/Dynamic.h"
#include "views/ButtonStyles.h"
#include "views/ClaudeStatusGlyph.h"
#include "views/CrabView.h"

namespace tarnwick {

using namespace ui;

namespace {

constexpr Size buttonSize{31, 26};
constexpr double spacing = 1;
/// That a button keeps to the edges of the strip where that is low, in points.
constexpr double margin = 2;

View symbolIcon(const char* name, double size, bool selected) {
  return Symbol(name).font({size}).opacity(selected ? 1 : 0.55);
}

View icon(Tab tab, const ClaudeService& claude, bool selected, Namespace names) {
  switch (tab) {
    case Tab::home:
      return symbolIcon("house.fill", 12, selected);
    case Tab::audio:
      return symbolIcon("speaker.wave.2.fill", 12, selected);
    case Tab::claude:
      return statusCrab(claude)
          .frame({.width = 20, .height = 13})
          .matchedGeometry("crab", names)
          .opacity(selected ? 1 : 0.7);
    case Tab::tray:
      return symbolIcon("tray.full.fill", 12, selected);
    case Tab::notes:
      return symbolIcon("note.text", 11, selected);
  }
  return {};
}

/// The highlight that glides to the selected tab, or a faint one under the pointer.
View highlight(bool selected, bool hovering) {
  static const Namespace pill = Namespace::make();
  if (selected) return Capsule().fill(white(0.17)).id("pill").matchedGeometry("pill", pill);
  if (hovering) return Capsule().fill(white(0.08)).id("hover").transition(Transition::opacity());
  return {};
}

View tabButton(Tab tab, View label, bool selected, double height, std::function<void()> action) {
  const ButtonStyle style = [=](View content, bool pressed, bool hovering) {
    return pressScaleStyle()(content, pressed, hovering)
        .frame({.width = buttonSize.width, .height = height})
        .background(highlight(selected, hovering))
        .animation(spring(0.25, 0.7), hovering)
        .accessibilityChecked(selected)
        .contentShape(Capsule());
  };
  return Button({.name = tabTitle(tab), .label = label, .style = style, .action = std::move(action)})
      .tooltip(tabTitle(tab));
}

}  // namespace

const double tabBarWidth = double(std::size(allTabs)) * (buttonSize.width + spacing) - spacing;

std::string tabTitle(Tab tab) {
  switch (tab) {
    case Tab::home:
      return tr("Home", "Accueil");
    case Tab::audio:
      return tr("Sound", "Son");
    case Tab::claude:
      return "Claude Code";
    case Tab::tray:
      return tr("Files", "Fichiers");
    case Tab::notes:
      return "Notes";
  }
  return {};
}

View tabBar(NotchModel& model, Namespace names) {
  const double height = std::min(buttonSize.height, model.notchSize->height - 2 * margin);
  Views buttons;
  for (const Tab tab : allTabs) {
    const bool selected = model.tab == tab;
    buttons.push_back(tabButton(tab, icon(tab, model.claude, selected, names), selected, height,
        [&model, tab] { model.select(tab); }));
  }
  return HStack({.spacing = spacing}, buttons).arrowKeys(Axis::horizontal);
}

}  // namespace tarnwick
