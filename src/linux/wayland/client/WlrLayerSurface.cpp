#include "linux/wayland/client/WlrLayerSurface.h"

#include <algorithm>

#include "linux/wayland/client/ToolkitResources.h"

namespace tarnwick {
namespace {

/// As others may list it.
constexpr const char* scopeName = "tarnwick";
/// Does not even move for what keeps space free.
constexpr int ignoresExclusiveZones = -1;

}  // namespace

const zwlr_layer_surface_v1_listener WlrLayerSurface::listener = {
    .configure = [](void* self, zwlr_layer_surface_v1*, uint32_t serial, uint32_t,
                     uint32_t) { static_cast<WlrLayerSurface*>(self)->configured(serial); },
    .closed = [](void* self, zwlr_layer_surface_v1*) { static_cast<WlrLayerSurface*>(self)->closed(); },
};

WlrLayerSurface::WlrLayerSurface(zwlr_layer_shell_v1* shell, QWindow& window, QScreen& screen)
    : surface_(surfaceOf(window)) {
  wl_display* display = toolkitDisplay();
  // Answers that come before nobody else may be given to the toolkit, which is in the midst of something.
  wl_event_queue* queue = wl_display_create_queue(display);
  auto* asking = static_cast<zwlr_layer_shell_v1*>(wl_proxy_create_wrapper(shell));
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(asking), queue);
  layer_ = zwlr_layer_shell_v1_get_layer_surface(
      asking, surface_, outputOf(screen), ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, scopeName);
  wl_proxy_wrapper_destroy(asking);
  zwlr_layer_surface_v1_add_listener(layer_, &listener, this);
  zwlr_layer_surface_v1_set_size(
      layer_, static_cast<uint32_t>(window.width()), static_cast<uint32_t>(window.height()));
  zwlr_layer_surface_v1_set_anchor(layer_, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP);
  zwlr_layer_surface_v1_set_exclusive_zone(layer_, ignoresExclusiveZones);
  wl_surface_commit(surface_);
  while (!isReady_ && !isClosed_ && wl_display_roundtrip_queue(display, queue) >= 0) {
  }
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(layer_), nullptr);
  wl_event_queue_destroy(queue);
}

WlrLayerSurface::~WlrLayerSurface() { zwlr_layer_surface_v1_destroy(layer_); }

void WlrLayerSurface::configured(uint32_t serial) {
  zwlr_layer_surface_v1_ack_configure(layer_, serial);
  isReady_ = true;
}

void WlrLayerSurface::closed() {
  isClosed_ = true;
  if (onClosed) onClosed();
}

void WlrLayerSurface::setKeyboard(Keyboard interactivity) {
  constexpr uint32_t values[] = {ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE,
      ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE,
      ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND};
  uint32_t value = values[static_cast<int>(interactivity)];
  const uint32_t version = wl_proxy_get_version(reinterpret_cast<wl_proxy*>(layer_));
  if (version < ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_ON_DEMAND_SINCE_VERSION)
    value = std::min(value, uint32_t{ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE});
  zwlr_layer_surface_v1_set_keyboard_interactivity(layer_, value);
  wl_surface_commit(surface_);
  wl_display_flush(toolkitDisplay());
}

}  // namespace tarnwick
