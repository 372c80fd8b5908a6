#include "linux/wayland/client/ToolkitResources.h"

#include <qpa/qplatformnativeinterface.h>

#include <QGuiApplication>

namespace tarnwick {
namespace {

QPlatformNativeInterface& native() { return *QGuiApplication::platformNativeInterface(); }

}  // namespace

wl_display* toolkitDisplay() {
  return static_cast<wl_display*>(native().nativeResourceForIntegration("wl_display"));
}

wl_seat* toolkitSeat() { return static_cast<wl_seat*>(native().nativeResourceForIntegration("wl_seat")); }

wl_output* outputOf(QScreen& screen) {
  return static_cast<wl_output*>(native().nativeResourceForScreen("output", &screen));
}

wl_surface* surfaceOf(QWindow& window) {
  return static_cast<wl_surface*>(native().nativeResourceForWindow("surface", &window));
}

std::string screenOf(wl_output* output) {
  for (QScreen* screen : QGuiApplication::screens()) {
    if (outputOf(*screen) == output) return screen->name().toStdString();
  }
  return {};
}

}  // namespace tarnwick
