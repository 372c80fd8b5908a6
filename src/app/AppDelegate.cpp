#include "app/AppDelegate.h"

#include "platform/linux/X11NotchPanel.h"
#include "ui/Drawing.h"
#include "ui/SceneWidget.h"
#include "views/NotchRootView.h"

namespace tarnwick {
namespace {

/// The window is laid out as large as the largest surface with its shadows.
constexpr Size contentSize{940, 380};

/// The black surface as it is shown now; empty while it cannot be seen.
QPainterPath presentedSurface(const ui::Scene& scene) {
  const auto frame = scene.presentedFrame(surfaceId);
  const auto shape = scene.presentedClip(surfaceId);
  return frame && shape ? ui::outline(*shape, frame->size()).translated(frame->x, frame->y) : QPainterPath();
}

}  // namespace

AppDelegate::AppDelegate(X11Connection& connection) : connection_(connection) {}

void AppDelegate::applicationDidFinishLaunching() {
  const Desktop desktop{scheduler_,    notifications_, defaults_,  folders_,      screens_,
                        pointer_,      windows_,       sounds_,    haptics_,      processes_,
                        applications_, images_,        log_,       audioDevices_, mediaKeys_,
                        brightness_,   powerSources_,  bluetooth_, calendars_};
  controller_ =
      std::make_unique<NotchController>(desktop, [this](NotchModel& model) { return makePanel(model); });
}

std::unique_ptr<NotchPanel> AppDelegate::makePanel(NotchModel& model) {
  // The settings window does not exist yet.
  auto* content = new ui::SceneWidget(scheduler_, contentSize,
                                      notchRootView(
                                          model, [] {}, !connection_.isXWayland()));
  auto panel = std::make_unique<X11NotchPanel>(connection_, screens_, scheduler_, *content,
                                               [content] { return presentedSurface(content->scene()); });
  content->onFrame = [panel = panel.get()] { panel->surfaceChanged(); };
  // What takes long to load must not keep the notch waiting.
  content->onFirstFrame = [this] {
    audioDevices_.connect();
    processes_.allowStarting();
    systemBus_.open();
    calendars_.allowConnecting();
  };
  panel->onPointerCrossing = [this] { pointer_.noteActivity(); };
  return panel;
}

}  // namespace tarnwick
