#include "linux/wayland/client/LibwaylandClient.h"

#include <algorithm>
#include <map>

#include "linux/wayland/client/PlasmaToplevels.h"
#include "linux/wayland/client/ToolkitResources.h"
#include "linux/wayland/client/WlrToplevels.h"

namespace tarnwick {
namespace {

/// What a compositor offers to every program.
class Globals {
 public:
  /// Waits for the list.
  explicit Globals(wl_display* display) : queue_(wl_display_create_queue(display)) {
    auto* asking = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(asking), queue_);
    registry_ = wl_display_get_registry(asking);
    wl_proxy_wrapper_destroy(asking);
    wl_registry_add_listener(registry_, &listener, this);
    wl_display_roundtrip_queue(display, queue_);
  }
  ~Globals() {
    wl_registry_destroy(registry_);
    wl_event_queue_destroy(queue_);
  }
  Globals(const Globals&) = delete;
  Globals& operator=(const Globals&) = delete;

  bool has(const wl_interface& interface) const { return offered_.contains(interface.name); }
  /// Null when it is not offered. Its events come with the toolkit's.
  template<typename T>
  T* bind(const wl_interface& interface, uint32_t newest = ~0U) const {
    const auto found = offered_.find(interface.name);
    if (found == offered_.end()) return nullptr;
    const auto [name, version] = found->second;
    const uint32_t known = std::min(newest, static_cast<uint32_t>(interface.version));
    void* proxy = wl_registry_bind(registry_, name, &interface, std::min(version, known));
    wl_proxy_set_queue(static_cast<wl_proxy*>(proxy), nullptr);
    return static_cast<T*>(proxy);
  }

 private:
  struct Offer {
    uint32_t name, version;
  };
  wl_event_queue* queue_;
  wl_registry* registry_;
  std::map<std::string, Offer> offered_;
  static inline const wl_registry_listener listener = {
      .global =
          [](void* self, wl_registry*, uint32_t name, const char* interface, uint32_t version) {
            static_cast<Globals*>(self)->offered_[interface] = {name, version};
          },
      .global_remove = [](void*, wl_registry*, uint32_t) {},
  };
};

}  // namespace

LibwaylandClient::~LibwaylandClient() {
  toplevels_.reset();
  if (layerShell_) wl_proxy_destroy(reinterpret_cast<wl_proxy*>(layerShell_));
}

bool LibwaylandClient::offersLayers() {
  wl_display* display = wl_display_connect(nullptr);
  if (!display) return false;
  const bool offers = Globals(display).has(zwlr_layer_shell_v1_interface);
  wl_display_disconnect(display);
  return offers;
}

void LibwaylandClient::start() {
  const Globals globals(toolkitDisplay());
  layerShell_ = globals.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface);
  if (auto* manager =
          globals.bind<zwlr_foreign_toplevel_manager_v1>(zwlr_foreign_toplevel_manager_v1_interface))
    toplevels_ = std::make_unique<WlrToplevels>(manager);
  else if (auto* plasma = globals.bind<org_kde_plasma_window_management>(
               org_kde_plasma_window_management_interface, PlasmaToplevels::version))
    toplevels_ = std::make_unique<PlasmaToplevels>(plasma);
}

std::unique_ptr<LayerSurface> LibwaylandClient::makeLayerSurface(QWindow& window, QScreen& screen) {
  if (!layerShell_ || !surfaceOf(window) || !outputOf(screen)) return nullptr;
  auto surface = std::make_unique<WlrLayerSurface>(layerShell_, window, screen);
  return surface->isReady() ? std::move(surface) : nullptr;
}

}  // namespace tarnwick

extern "C" tarnwick::WaylandClient* tarnwickMakeWaylandClient() { return new tarnwick::LibwaylandClient; }
