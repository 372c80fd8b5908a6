#include "app/AppDelegate.h"

#include <QCoreApplication>

#include "linux/x11/X11NotchPanel.h"
#include "ui/engine/Drawing.h"
#include "ui/host/SceneWidget.h"
#include "views/NotchRootView.h"

namespace tarnwick {
namespace {

/// The black surface as it is now.
X11NotchPanel::Surface presentedSurface(const ui::Scene& scene) {
  X11NotchPanel::Surface surface;
  const auto frame = scene.presentedFrame(surfaceId);
  const auto shape = scene.presentedClip(surfaceId);
  if (frame) surface.frame = *frame;
  if (frame && shape && scene.isVisible(surfaceId)) {
    surface.outline = ui::outline(*shape, frame->size()).translated(frame->x, frame->y);
  }
  return surface;
}

}  // namespace

AppDelegate::AppDelegate(X11Connection& connection) : connection_(connection) {}

void AppDelegate::applicationDidFinishLaunching() {
  notifications_.onAnotherOverlay = [] { QCoreApplication::quit(); };
  const Desktop desktop{.scheduler = scheduler_,
                        .notifications = notifications_,
                        .defaults = defaults_,
                        .folders = folders_,
                        .screens = screens_,
                        .pointer = pointer_,
                        .windows = windows_,
                        .sounds = sounds_,
                        .haptics = haptics_,
                        .processes = processes_,
                        .applications = applications_,
                        .images = images_,
                        .log = log_,
                        .audioDevices = audioDevices_,
                        .mediaKeys = mediaKeys_,
                        .brightness = brightness_,
                        .powerSources = powerSources_,
                        .bluetooth = bluetooth_,
                        .calendars = calendars_};
  controller_ =
      std::make_unique<NotchController>(desktop, [this](NotchModel& model) { return makePanel(model); });
}

std::unique_ptr<NotchPanel> AppDelegate::makePanel(NotchModel& model) {
  // The settings window does not exist yet.
  auto* content = new ui::SceneWidget(scheduler_, panelSize,
                                      notchRootView(
                                          model, [] {}, !connection_.isXWayland()));
  auto panel = std::make_unique<X11NotchPanel>(connection_, screens_, scheduler_, *content,
                                               [content] { return presentedSurface(content->scene()); });
  content->onFrame = [panel = panel.get()] { panel->surfaceChanged(); };
  content->smoothPointsPerClick = [panel = panel.get()](const QWheelEvent& event) {
    return panel->smoothPointsPerClick(event);
  };
  // What takes long to load must not keep the notch waiting.
  content->onFirstFrame = [this] {
    audioDevices_.connect();
    processes_.allowStarting();
    systemBus_.open();
    sessionBus_.open();
  };
  panel->onPointerCrossing = [this] { pointer_.noteActivity(); };
  return panel;
}

}  // namespace tarnwick
