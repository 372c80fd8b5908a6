#include "linux/wayland/client/PlasmaToplevels.h"

#include <QGuiApplication>
#include <algorithm>

#include "linux/wayland/client/ToolkitResources.h"

namespace tarnwick {

const org_kde_plasma_window_management_listener PlasmaToplevels::managerListener = {
    .show_desktop_changed = [](void*, org_kde_plasma_window_management*, uint32_t) {},
    .window = [](void* self, org_kde_plasma_window_management*,
                  uint32_t number) { static_cast<PlasmaToplevels*>(self)->add(number); },
    .stacking_order_changed = [](void*, org_kde_plasma_window_management*, wl_array*) {},
    .stacking_order_uuid_changed = [](void*, org_kde_plasma_window_management*, const char*) {},
};

// The compositor tells one thing at a time, and never that it has told all.
const org_kde_plasma_window_listener PlasmaToplevels::windowListener = {
    .title_changed = [](void*, org_kde_plasma_window*, const char*) {},
    .app_id_changed = [](void* entry, org_kde_plasma_window*,
                          const char* name) { static_cast<Entry*>(entry)->toplevel.application = name; },
    .state_changed =
        [](void* self, org_kde_plasma_window*, uint32_t flags) {
          auto& entry = *static_cast<Entry*>(self);
          entry.list.setState(entry, flags);
        },
    .virtual_desktop_changed = [](void*, org_kde_plasma_window*, int32_t) {},
    .themed_icon_name_changed = [](void*, org_kde_plasma_window*, const char*) {},
    .unmapped =
        [](void* self, org_kde_plasma_window*) {
          const auto& entry = *static_cast<Entry*>(self);
          entry.list.remove(entry);
        },
    .initial_state = [](void* entry, org_kde_plasma_window*) { static_cast<Entry*>(entry)->list.changed(); },
    .parent_window = [](void*, org_kde_plasma_window*, org_kde_plasma_window*) {},
    .geometry =
        [](void* self, org_kde_plasma_window*, int32_t x, int32_t y, uint32_t width, uint32_t height) {
          auto& entry = *static_cast<Entry*>(self);
          entry.geometry = QRect(x, y, static_cast<int>(width), static_cast<int>(height));
          entry.list.changed();
        },
    .icon_changed = [](void*, org_kde_plasma_window*) {},
    .pid_changed = [](void* entry, org_kde_plasma_window*,
                       uint32_t process) { static_cast<Entry*>(entry)->toplevel.process = process; },
    .virtual_desktop_entered = [](void*, org_kde_plasma_window*, const char*) {},
    .virtual_desktop_left = [](void*, org_kde_plasma_window*, const char*) {},
    .application_menu = [](void*, org_kde_plasma_window*, const char*, const char*) {},
};

PlasmaToplevels::PlasmaToplevels(org_kde_plasma_window_management* manager) : manager_(manager) {
  org_kde_plasma_window_management_add_listener(manager_, &managerListener, this);
}

PlasmaToplevels::~PlasmaToplevels() {
  for (const auto& entry : entries_) org_kde_plasma_window_destroy(entry->window);
  org_kde_plasma_window_management_destroy(manager_);
}

std::vector<Toplevel> PlasmaToplevels::all() const {
  std::vector<Toplevel> list;
  for (const auto& entry : entries_) {
    Toplevel& toplevel = list.emplace_back(entry->toplevel);
    const QScreen* screen = QGuiApplication::screenAt(entry->geometry.center());
    if (screen) toplevel.screens.push_back(screen->name().toStdString());
  }
  return list;
}

void PlasmaToplevels::activate(uint32_t id) {
  const auto found = std::ranges::find(entries_, id, [](const auto& entry) { return entry->toplevel.id; });
  if (found == entries_.end()) return;
  constexpr uint32_t active = ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE;
  org_kde_plasma_window_set_state((*found)->window, active, active);
  wl_display_flush(toolkitDisplay());
}

void PlasmaToplevels::giveBackKeyboard() {
  if (std::ranges::none_of(entries_, [](const auto& entry) { return entry->toplevel.active; }))
    activate(lastActive_);
}

void PlasmaToplevels::add(uint32_t number) {
  org_kde_plasma_window* window = org_kde_plasma_window_management_get_window(manager_, number);
  auto& entry = entries_.emplace_back(std::make_unique<Entry>(Entry{*this, window, {.id = ++lastId_}}));
  org_kde_plasma_window_add_listener(window, &windowListener, entry.get());
}

void PlasmaToplevels::remove(const Entry& entry) {
  org_kde_plasma_window_destroy(entry.window);
  std::erase_if(entries_, [&](const auto& other) { return other.get() == &entry; });
  changed();
}

void PlasmaToplevels::setState(Entry& entry, uint32_t flags) {
  Toplevel& toplevel = entry.toplevel;
  const bool wasActive = toplevel.active;
  toplevel.active = flags & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE;
  toplevel.fullScreen = flags & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_FULLSCREEN;
  toplevel.hidden = flags & ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_MINIMIZED;
  if (toplevel.active) lastActive_ = toplevel.id;
  if (toplevel.active && !wasActive && onActivate) onActivate();
  changed();
}

void PlasmaToplevels::changed() const {
  if (onChange) onChange();
}

}  // namespace tarnwick
