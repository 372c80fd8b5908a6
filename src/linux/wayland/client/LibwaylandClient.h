#pragma once
#include "linux/wayland/WaylandClient.h"
#include "linux/wayland/client/WlrLayerSurface.h"

namespace tarnwick {

/// Over the library of Wayland.
class LibwaylandClient : public WaylandClient {
 public:
  ~LibwaylandClient() override;

  bool offersLayers() override;
  void start() override;
  std::unique_ptr<LayerSurface> makeLayerSurface(QWindow& window, QScreen& screen) override;
  Toplevels* toplevels() override { return toplevels_.get(); }

 private:
  zwlr_layer_shell_v1* layerShell_ = nullptr;
  std::unique_ptr<Toplevels> toplevels_;
};

}  // namespace tarnwick
