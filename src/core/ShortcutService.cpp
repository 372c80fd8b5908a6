#include "core/ShortcutService.h"

#include <utility>

#include "base/L10n.h"

namespace tarnwick {

ShortcutService::ShortcutService(
    AppSettings& settings, GlobalShortcuts& shortcuts, std::function<void(const std::string&)> act)
    : settings_(settings), shortcuts_(shortcuts) {
  shortcuts_.onPress = std::move(act);
}

std::vector<ShortcutService::Action> ShortcutService::actions() const {
  return {{"toggle", tr("Open or close the notch", "Ouvrir ou fermer l'encoche"), settings_.toggleShortcut},
      {"next", tr("Go to the session that waits", "Aller à la session qui attend"), settings_.nextShortcut}};
}

void ShortcutService::start() {
  changes_ = settings_.observe([this] { update(); });
  update();
}

void ShortcutService::pause(bool paused) {
  isPaused_ = paused;
  if (!paused) update();
  shortcuts_.pause(paused);
}

void ShortcutService::assign(const std::string& action, const std::optional<KeyChord>& chord) {
  const std::string text = chord ? chord->text() : "";
  for (const Action& each : actions()) {
    if (each.name == action) {
      each.chord = text;
    } else if (!text.empty() && *each.chord == text) {
      each.chord = "";
    }
  }
}

void ShortcutService::update() {
  if (isPaused_) return;
  std::map<std::string, GlobalShortcuts::Wanted> wanted;
  for (const Action& action : actions()) {
    const auto chord = KeyChord::parse(*action.chord);
    if (chord && chord->isReserved()) wanted[action.name] = {*chord, action.title};
  }
  if (wanted != std::exchange(set_, wanted)) shortcuts_.set(wanted);
}

}  // namespace tarnwick
