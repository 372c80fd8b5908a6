#include "app/AppDelegate.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>

#include "claude/SessionsJson.h"
#include "ui/engine/Drawing.h"
#include "ui/paint/Painter.h"
#include "views/CrabView.h"
#include "views/NotchRootView.h"

namespace tarnwick {
namespace {

/// Room for the largest surface with its shadow, in points.
constexpr Size panelSize{940, 380};
constexpr double loadDelay = 0.05;

/// The black surface as it is now.
PanelContent::Surface presentedSurface(const ui::Scene& scene) {
  PanelContent::Surface surface;
  const auto frame = scene.presentedFrame(surfaceId);
  const auto shape = scene.presentedClip(surfaceId);
  if (frame) surface.frame = *frame;
  if (frame && shape && scene.isVisible(surfaceId)) {
    surface.outline = ui::outline(*shape, frame->size()).translated(frame->x, frame->y);
  }
  surface.floating = scene.floating().value_or(Rect{});
  return surface;
}

/// The mascot in its notch, for lists of windows.
QIcon applicationIcon(Scheduler& scheduler) {
  ui::Scene scene(scheduler, {64, 64},
      ui::ZStack(UnitPoint::center, {ui::RoundedRectangle(14).fill(black()),
                                        crabView(CrabMood::idle).frame({.width = 48, .height = 30})}),
      2);
  scene.frame();
  return QPixmap::fromImage(ui::picture(scene));
}

}  // namespace

AppDelegate::AppDelegate(DisplayConnection& connection)
    : display_(connection.start(scheduler_)), shortcutKeys_(makeShortcuts()) {}

std::unique_ptr<GlobalShortcuts> AppDelegate::makeShortcuts() {
  auto own = display_->makeShortcuts();
  return own ? std::move(own) : std::make_unique<PortalShortcuts>(sessionBus_);
}

void AppDelegate::openThere(bool settings) {
  notifications_.post(openNotification, {{"window", settings ? "settings" : "notch"}});
}

void AppDelegate::applicationDidFinishLaunching(bool withSettings) {
  notifications_.onAnotherOverlay = [] { QCoreApplication::quit(); };
  const Desktop desktop{.scheduler = scheduler_,
      .notifications = notifications_,
      .defaults = defaults_,
      .folders = folders_,
      .screens = display_->screens(),
      .windows = display_->windows(),
      .sounds = sounds_,
      .haptics = haptics_,
      .processes = processes_,
      .applications = applications_,
      .images = images_,
      .log = log_,
      .audioDevices = audioDevices_,
      .mediaKeys = display_->mediaKeys(),
      .brightness = brightness_,
      .powerSources = powerSources_,
      .bluetooth = bluetooth_,
      .calendars = calendars_,
      .appearance = appearance_,
      .fileIcons = fileIcons_,
      .fileManager = fileManager_,
      .sharing = sharing_,
      .foreignProcesses = foreignProcesses_,
      .growingFiles = growingFiles_,
      .activation = display_->activation(),
      .permissions = permissions_};
  controller_ =
      std::make_unique<NotchController>(desktop, [this](NotchModel& model) { return makePanel(model); });
  shortcuts_.emplace(controller_->model().settings, *shortcutKeys_, [this](const std::string& action) {
    notifications_.receive(openNotification, {{"window", "notch"}, {"action", action}});
  });
  settings_.emplace(SettingsContext{.model = controller_->model(),
      .hud = controller_->hud(),
      .shortcuts = *shortcuts_,
      .loginItem = loginItem_,
      .pages = settingsPages_,
      .hooks = hooks_,
      .appearance = appearance_,
      .scheduler = scheduler_,
      .keysStayWithDesktop = qEnvironmentVariable("XDG_SESSION_TYPE") == "wayland",
      .quit = [] { QCoreApplication::quit(); }});
  controller_->onFocus = [this](const std::string& id) { focus(id); };
  sessionsObject_.describe = [this] { return sessionsJson(controller_->model().claude.ordered()); };
  sessionChanges_ = controller_->model().claude.observe([this] { sessionsObject_.changed(); });
  disclosures_ = controller_->model().permissions.observe(
      [this] { showing_ = scheduler_.post([this] { showRequest(); }); });
  showcase_.emplace(controller_->model(), scheduler_, folders_);
  controller_->onShowcaseCommand = [this](const std::string& command, const std::string& argument) {
    showcase_->handle(command, argument);
  };
  controller_->onOpenSettings = [this] { openSettings(); };
  // What takes long to load must not keep the notch waiting, whose window needs some turns of the loop to
  // show.
  loading_ = scheduler_.after(loadDelay, [this, withSettings] {
    if (withSettings) openSettings();
    audioDevices_.connect();
    processes_.allowStarting();
    systemBus_.open();
    calendars_.connect();
    appearance_.connect();
    listenElsewhere();
    shortcuts_->start();
  });
}

void AppDelegate::listenElsewhere() {
  const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
  if (!runtime.startsWith('/')) return;
  const FilePath path = runtime.toStdString() + "/tarnwick/events";
  eventListener_.emplace(
      [this](const StringMap& event) { notifications_.receive(eventNotification, event); });
  if (const std::string problem = eventListener_->listen(path); !problem.empty()) {
    return log_.write("Tarnwick: cannot listen at " + path + ": " + problem);
  }
  eventNotifier_ = std::make_unique<QSocketNotifier>(eventListener_->descriptor(), QSocketNotifier::Read);
  QObject::connect(eventNotifier_.get(), &QSocketNotifier::activated, [this] { eventListener_->proceed(); });
}

void AppDelegate::applicationWillTerminate() {
  if (controller_) controller_->model().flush();
  eventNotifier_.reset();
  eventListener_.reset();
}

void AppDelegate::openSettings() {
  // It would lie before the window.
  controller_->model().collapse();
  if (QGuiApplication::windowIcon().isNull()) QGuiApplication::setWindowIcon(applicationIcon(scheduler_));
  settings_->show(QGuiApplication::primaryScreen());
}

void AppDelegate::focus(const std::string& id) {
  ui::Scene& scene = content_->scene();
  scene.frame();
  if (scene.input().focus(id)) return;
  // The list has only the rows that can be seen: each one brings the next ones into view.
  for (const Session& session : controller_->model().claude.ordered()) {
    scene.frame();
    if (!scene.input().focus(session.id) || session.id == id) return;
  }
}

void AppDelegate::showRequest() {
  ui::Scene& scene = content_->scene();
  const std::string id = controller_->model().permissions.disclosed;
  if (id.empty()) return;
  for (const Session& session : controller_->model().claude.ordered()) {
    scene.frame();
    if (!scene.input().reveal(session.id) || session.id == id) return;
  }
}

std::unique_ptr<NotchPanel> AppDelegate::makePanel(NotchModel& model) {
  auto* content = content_ = new ui::SceneWidget(scheduler_, panelSize,
      notchRootView(
          model, [this] { openSettings(); }, display_->hasRoomForShadow()));
  auto panel = display_->makePanel({*content, [content] { return presentedSurface(content->scene()); },
      [content](Point at, Point delta) { return content->scene().input().canScroll(at, delta); }});
  content->onFrame = [&model, content, panel = panel.get()] {
    model.floating = content->scene().floating();
    panel->surfaceChanged();
  };
  content->onTakeKeyboard = [panel = panel.get()] { panel->becomeKey(); };
  content->onGiveBackKeyboard = [panel = panel.get()] { panel->resignKey(); };
  content->smoothPointsPerClick = [panel = panel.get()](const QWheelEvent& event) {
    return panel->smoothPointsPerClick(event);
  };
  return panel;
}

}  // namespace tarnwick
