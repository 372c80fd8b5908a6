#pragma once
#include "linux/wayland/WaylandClient.h"
#include "wlr-layer-shell.h"

namespace tarnwick {

/// A surface in the role of zwlr_layer_shell_v1.
class WlrLayerSurface : public LayerSurface {
 public:
  /// Waits until the compositor has answered.
  WlrLayerSurface(zwlr_layer_shell_v1* shell, QWindow& window, QScreen& screen);
  ~WlrLayerSurface() override;

  /// The compositor has taken it; nothing may be shown otherwise.
  bool isReady() const { return isReady_; }
  void setKeyboard(Keyboard interactivity) override;

 private:
  void configured(uint32_t serial);
  void closed();

  static const zwlr_layer_surface_v1_listener listener;
  wl_surface* surface_;
  zwlr_layer_surface_v1* layer_ = nullptr;
  bool isReady_ = false, isClosed_ = false;
};

}  // namespace tarnwick
