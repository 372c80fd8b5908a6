#include "core/NotchController.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "platform/HapticPerformer.h"
#include "platform/NotificationCenter.h"
#include "platform/Pointer.h"

namespace tarnwick {
namespace {

/// What is taken for a notch on a screen without one; at least as high as this, else as the menu bar.
constexpr Size pretendedNotch{190, 24};
/// What is kept free at the top and is higher than this is no bar.
constexpr double highestMenuBar = 100;

/// How long, in seconds, a body that was not opened by the pointer waits for it.
constexpr double pointerComesWithin = 8;

constexpr double verticalSwipe = 14;
constexpr double horizontalSwipe = 36;

constexpr Animation dropTargetOn = spring(0.3, 0.7);
constexpr Animation dropTargetOff = easeOut(0.2);
constexpr Animation dropLands = spring(0.35, 0.7);

/// Lengths in points may be fractions of pixels; a window that is a point off is off.
bool isSame(double a, double b) { return std::abs(a - b) < 0.5; }

/// The horizontal position does not count.
bool covers(const WindowInfo& window, const Rect& screen, int64_t ownProcess) {
  return !window.maximized && window.owner != ownProcess && isSame(window.bounds.width, screen.width) &&
         isSame(window.bounds.height, screen.height) && isSame(window.bounds.y, screen.y);
}

}  // namespace

NotchController::NotchController(const Desktop& desktop, const PanelFactory& makePanel)
    : desktop_(desktop),
      model_(desktop_),
      panel_(makePanel(model_)),
      haptics_(model_.settings, desktop_.haptics),
      tracker_(desktop_.scheduler, model_, *panel_, haptics_) {
  panel_->onScroll = [this](const ScrollEvent& event) { return handleScroll(event); };
  panel_->onResize = [this] { tracker_.wake(); };
  panel_->onKeyChange = [this](bool has) { tracker_.holdOpen(has && openedByKeyboard_); };
  panel_->onDragEnter = [this] { dragEntered(); };
  panel_->onDragExit = [this] { dragExited(); };
  panel_->onDropFiles = [this](const std::vector<FilePath>& files) { filesDropped(files); };
  layout();
  listen();
  // Before the window shows, so that its first frame is that of a notch under the pointer, where it is there.
  tracker_.start();
  panel_->orderFrontRegardless();
  startServices();
}

std::optional<Screen> NotchController::targetScreen() const {
  const std::vector<Screen> screens = desktop_.screens.all();
  if (screens.empty()) return std::nullopt;
  const auto withNotch = std::find_if(
      screens.begin(), screens.end(), [](const Screen& screen) { return screen.auxiliaryTopLeftWidth; });
  return withNotch != screens.end() ? *withNotch : screens.front();
}

void NotchController::layout() {
  const std::optional<Screen> screen = targetScreen();
  if (!screen) return;
  const Rect& frame = screen->frame;
  model_.hasNotch = screen->auxiliaryTopLeftWidth && screen->auxiliaryTopRightWidth;
  if (model_.hasNotch) {
    model_.notchSize = {frame.width - *screen->auxiliaryTopLeftWidth - *screen->auxiliaryTopRightWidth,
        screen->topSafeAreaInset};
  } else {
    const double reserved = screen->visibleFrame.y - frame.y;
    const double menuBar = reserved > highestMenuBar ? 0 : reserved;
    model_.notchSize = {pretendedNotch.width, std::max(menuBar, pretendedNotch.height)};
  }
  panel_->moveTo(*screen);
  tracker_.wake();
}

void NotchController::startServices() {
  model_.media.start(model_.settings);
  model_.power.start(model_.settings);
  model_.bluetooth.start(model_.settings);
  // Not now: it may have to ask the user for permission.
  calendarStart_ = desktop_.scheduler.post([this] { followCalendarSetting(); });
  subscriptions_.push_back(model_.settings.observe([this] { followCalendarSetting(); }));
  model_.audio.start();
  hud_.emplace(model_, desktop_);
}

void NotchController::listen() {
  subscriptions_.push_back(desktop_.screens.observe([this] {
    layout();
    checkFullscreen();
  }));
  // However the body is closed, who had the keyboard before gets it back.
  subscriptions_.push_back(isOpen_.observe([this] {
    if (isOpen_.get()) return;
    openedByKeyboard_ = false;
    panel_->resignKey();
  }));
  subscriptions_.push_back(
      trayIsOnShow_.observe([this] { model_.trayFiles.setOnShow(trayIsOnShow_.get()); }));
  subscriptions_.push_back(desktop_.windows.observe([this] { checkFullscreen(); }));
  fullscreenCheck_ = desktop_.scheduler.post([this] { checkFullscreen(); });
  subscriptions_.push_back(desktop_.notifications.observe(
      eventNotification, [this](const StringMap& event) { handleEvent(event); }));
  subscriptions_.push_back(desktop_.permissions.observe(
      [this](const PermissionRequests::Request& request) { handleRequest(request); }));
  subscriptions_.push_back(desktop_.notifications.observe(
      showcaseNotification, [this](const StringMap& payload) { handleShowcase(payload); }));
  subscriptions_.push_back(desktop_.notifications.observe(
      openNotification, [this](const StringMap& payload) { handleOpen(payload); }));
}

void NotchController::followCalendarSetting() {
  model_.settings.calendarEnabled ? model_.calendar.start() : model_.calendar.stop();
}

void NotchController::checkFullscreen() {
  const std::optional<Screen> screen = targetScreen();
  if (!screen) return;
  const auto windows = desktop_.windows.onScreen();
  if (!windows) return;
  const int64_t ownProcess = desktop_.windows.ownProcess();
  const bool covered = std::any_of(windows->begin(), windows->end(),
      [&](const WindowInfo& window) { return covers(window, screen->frame, ownProcess); });
  if (covered != model_.hiddenForFullscreen) {
    withAnimation(notchClose, [&] { model_.hiddenForFullscreen = covered; });
  }
}

void NotchController::handleEvent(const StringMap& event) {
  // Real sessions do not disturb a running demonstration.
  if (model_.showcase && !valueOf(event, "session_id").value_or("").starts_with("showcase")) return;
  withAnimation(notchOpen, [&] { model_.claude.handle(event); });
}

void NotchController::handleRequest(const PermissionRequests::Request& request) {
  // A demonstration answers nothing.
  if (model_.showcase) return model_.permissions.decline(request.number);
  withAnimation(notchOpen, [&] { model_.permissions.ask(request); });
}

void NotchController::handleShowcase(const StringMap& payload) {
  if (!onShowcaseCommand) return;
  onShowcaseCommand(valueOf(payload, "cmd").value_or(""), valueOf(payload, "arg").value_or(""));
  tracker_.wake();
}

void NotchController::handleOpen(const StringMap& payload) {
  if (valueOf(payload, "window") == "settings") {
    if (onOpenSettings) onOpenSettings();
  } else if (const auto way = valueOf(payload, "way")) {
    changeLevel(valueOf(payload, "action").value_or(""), *way);
  } else if (!model_.showcase) {
    act(valueOf(payload, "action").value_or(""), tabNamed(valueOf(payload, "tab").value_or("")));
  }
}

void NotchController::changeLevel(const std::string& level, const std::string& way) {
  using enum MediaKey;
  static const std::map<std::pair<std::string, std::string>, MediaKey> keys{{{"volume", "up"}, soundUp},
      {{"volume", "down"}, soundDown}, {{"volume", "mute"}, mute}, {{"brightness", "up"}, brightnessUp},
      {{"brightness", "down"}, brightnessDown}};
  if (const auto key = keys.find({level, way}); key != keys.end()) hud_->carryOut({.key = key->second});
}

void NotchController::act(const std::string& action, std::optional<Tab> tab) {
  if (action == "close" || (action == "toggle" && model_.isExpanded)) return model_.collapse();
  model_.expand(action == "next" ? Tab::claude : tab);
  tracker_.awaitPointer(pointerComesWithin);
  // Who just starts the program again has a hand at the pointer.
  if (action.empty()) return;
  openedByKeyboard_ = true;
  panel_->becomeKey();
  if (onFocus) focusContent(action == "next");
}

/// What somebody at the keyboard wants to use first.
void NotchController::focusContent(bool onNext) {
  if (model_.tab == Tab::notes) return onFocus(std::string(rawValue(Tab::notes)));
  const std::vector<Session>& sessions = model_.claude.ordered();
  if (model_.tab != Tab::claude || sessions.empty()) return;
  const auto next = onNext ? model_.claude.longestWaiting() : std::nullopt;
  onFocus(next.value_or(sessions.front()).id);
}

bool NotchController::handleScroll(const ScrollEvent& event) {
  if (model_.isExpanded && model_.tab != Tab::home) return false;
  // A wheel makes no gestures: it turns the content.
  if (!event.precise) return !model_.isExpanded;
  if (event.momentum) return true;
  if (event.phase == ScrollEvent::Phase::began || event.phase == ScrollEvent::Phase::mayBegin) {
    swipe_ = {};
    swipeHandled_ = false;
    scrollsContent_ = model_.isExpanded && event.contentCanFollow;
  }
  if (scrollsContent_) return false;
  // The fingers' own direction, whichever way the content is set to scroll.
  const double sign = event.directionInverted ? 1 : -1;
  swipe_ = swipe_ + Point{event.deltaX * sign, event.deltaY * sign};
  if (!swipeHandled_) swipeHandled_ = actOnSwipe();
  if (event.phase == ScrollEvent::Phase::ended || event.phase == ScrollEvent::Phase::cancelled) {
    swipe_ = {};
    swipeHandled_ = false;
  }
  return true;
}

/// @return whether the gesture has gone far enough to mean something
bool NotchController::actOnSwipe() {
  if (std::abs(swipe_.x) * 1.2 < std::abs(swipe_.y)) {
    if (swipe_.y > verticalSwipe) {
      if (!model_.isExpanded) {
        model_.expand();
        haptics_.tap();
      }
      return true;
    }
    if (swipe_.y < -verticalSwipe) {
      if (model_.isExpanded) {
        model_.collapse();
        haptics_.tap();
      }
      return true;
    }
    return false;
  }
  if (std::abs(swipe_.x) <= horizontalSwipe || model_.media.title->empty()) return false;
  if (swipe_.x >= 0) {
    model_.media.previousTrack();
  } else {
    model_.media.nextTrack();
  }
  haptics_.tap();
  return true;
}

void NotchController::dragEntered() {
  if (!model_.isDraggingFiles) {
    haptics_.tap();
    model_.setDraggingFiles(true);
  }
  withAnimation(dropTargetOn, [this] { model_.isDropTargeted = true; });
}

void NotchController::dragExited() {
  withAnimation(dropTargetOff, [this] { model_.isDropTargeted = false; });
}

void NotchController::filesDropped(const std::vector<FilePath>& files) {
  withAnimation(dropLands, [&] {
    model_.tray.add(files);
    model_.isDropTargeted = false;
    model_.expand(Tab::tray);
    model_.setDraggingFiles(false);
    haptics_.tap();
  });
}

}  // namespace tarnwick
