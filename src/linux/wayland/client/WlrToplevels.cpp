#include "linux/wayland/client/WlrToplevels.h"

#include <algorithm>
#include <span>
#include <utility>

#include "linux/wayland/client/ToolkitResources.h"

namespace tarnwick {

const zwlr_foreign_toplevel_manager_v1_listener WlrToplevels::managerListener = {
    .toplevel =
        [](void* self, zwlr_foreign_toplevel_manager_v1*, zwlr_foreign_toplevel_handle_v1* handle) {
          static_cast<WlrToplevels*>(self)->add(handle);
        },
    .finished = [](void*, zwlr_foreign_toplevel_manager_v1*) {},
};

const zwlr_foreign_toplevel_handle_v1_listener WlrToplevels::handleListener = {
    .title = [](void*, zwlr_foreign_toplevel_handle_v1*, const char*) {},
    .app_id = [](void* entry, zwlr_foreign_toplevel_handle_v1*,
                  const char* name) { static_cast<Entry*>(entry)->toplevel.application = name; },
    .output_enter =
        [](void* entry, zwlr_foreign_toplevel_handle_v1*, wl_output* output) {
          if (output) static_cast<Entry*>(entry)->outputs.push_back(output);
        },
    .output_leave = [](void* entry, zwlr_foreign_toplevel_handle_v1*,
                        wl_output* output) { std::erase(static_cast<Entry*>(entry)->outputs, output); },
    .state =
        [](void* entry, zwlr_foreign_toplevel_handle_v1*, wl_array* array) {
          const std::span states(static_cast<const uint32_t*>(array->data), array->size / sizeof(uint32_t));
          const auto has = [&](uint32_t state) { return std::ranges::find(states, state) != states.end(); };
          Toplevel& toplevel = static_cast<Entry*>(entry)->toplevel;
          const bool isActive = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED);
          if (isActive && !toplevel.active) static_cast<Entry*>(entry)->wasActivated = true;
          toplevel.active = isActive;
          toplevel.fullScreen = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_FULLSCREEN);
          toplevel.hidden = has(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED);
        },
    .done =
        [](void* self, zwlr_foreign_toplevel_handle_v1*) {
          auto* entry = static_cast<Entry*>(self);
          const WlrToplevels& list = entry->list;
          if (std::exchange(entry->wasActivated, false) && list.onActivate) list.onActivate();
          list.changed();
        },
    .closed =
        [](void* self, zwlr_foreign_toplevel_handle_v1*) {
          const auto* entry = static_cast<Entry*>(self);
          entry->list.remove(*entry);
        },
    .parent = [](void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {},
};

WlrToplevels::WlrToplevels(zwlr_foreign_toplevel_manager_v1* manager) : manager_(manager) {
  zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &managerListener, this);
}

WlrToplevels::~WlrToplevels() {
  for (const auto& entry : entries_) zwlr_foreign_toplevel_handle_v1_destroy(entry->handle);
  zwlr_foreign_toplevel_manager_v1_destroy(manager_);
}

std::vector<Toplevel> WlrToplevels::all() const {
  std::vector<Toplevel> list;
  for (const auto& entry : entries_) {
    Toplevel& toplevel = list.emplace_back(entry->toplevel);
    for (wl_output* output : entry->outputs) toplevel.screens.push_back(screenOf(output));
  }
  return list;
}

void WlrToplevels::activate(uint32_t id) {
  const auto found = std::ranges::find(entries_, id, [](const auto& entry) { return entry->toplevel.id; });
  if (found == entries_.end()) return;
  zwlr_foreign_toplevel_handle_v1_activate((*found)->handle, toolkitSeat());
  wl_display_flush(toolkitDisplay());
}

void WlrToplevels::add(zwlr_foreign_toplevel_handle_v1* handle) {
  auto& entry = entries_.emplace_back(std::make_unique<Entry>(Entry{*this, handle, {.id = ++lastId_}}));
  zwlr_foreign_toplevel_handle_v1_add_listener(handle, &handleListener, entry.get());
}

void WlrToplevels::remove(const Entry& entry) {
  zwlr_foreign_toplevel_handle_v1_destroy(entry.handle);
  std::erase_if(entries_, [&](const auto& other) { return other.get() == &entry; });
  changed();
}

void WlrToplevels::changed() const {
  if (onChange) onChange();
}

}  // namespace tarnwick
