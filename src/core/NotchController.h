#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Derived.h"
#include "core/HUDService.h"
#include "core/HapticFeedback.h"
#include "core/NotchModel.h"
#include "core/NotchPanel.h"
#include "core/PointerTracker.h"
#include "platform/Desktop.h"
#include "platform/Screens.h"
#include "platform/WindowList.h"

namespace tarnwick {

/// Brings the notch to life: makes the model and its window, keeps the window over the notch of the right
/// screen, starts the services, and turns hook events, swipes, drops and full-screen windows into state.
class NotchController {
 public:
  /// Makes the window that shows the model. It is not on the screen yet.
  using PanelFactory = std::function<std::unique_ptr<NotchPanel>(NotchModel&)>;

  /// The whole start-up: when it returns the notch is on the screen. `desktop`'s ports must outlive the
  /// controller.
  NotchController(const Desktop& desktop, const PanelFactory& makePanel);

  NotchModel& model() { return model_; }
  HUDService& hud() { return *hud_; }

  /// Takes the commands of the demonstration mode and their arguments; without it they are ignored.
  std::function<void(const std::string& command, const std::string& argument)> onShowcaseCommand;
  /// Opens the settings window.
  std::function<void()> onOpenSettings;
  /// Gives the keyboard's focus to what is shown under that id: a session's row, or a page's first control.
  std::function<void(const std::string& id)> onFocus;

 private:
  std::optional<Screen> targetScreen() const;
  void layout();
  void listen();
  void startServices();
  void followCalendarSetting();
  void checkFullscreen();

  void handleEvent(const StringMap& event);
  void handleRequest(const PermissionRequests::Request& request);
  void handleShowcase(const StringMap& payload);
  void handleOpen(const StringMap& payload);
  void changeLevel(const std::string& level, const std::string& way);
  void act(const std::string& action, std::optional<Tab> tab);
  void focusContent(bool onNext);

  bool handleScroll(const ScrollEvent& event);
  bool actOnSwipe();
  void dragEntered();
  void dragExited();
  void filesDropped(const std::vector<FilePath>& files);

  const Desktop desktop_;
  NotchModel model_;
  std::unique_ptr<NotchPanel> panel_;
  HapticFeedback haptics_;
  PointerTracker tracker_;
  std::optional<HUDService> hud_;

  /// How far the fingers of the current trackpad gesture have moved, in points.
  Point swipe_;
  /// The gesture scrolls what lies below the pointer, and so is none for the notch, also at the content's
  /// end.
  bool scrollsContent_ = false;
  /// The current gesture has done its one action.
  bool swipeHandled_ = false;

  Task calendarStart_, fullscreenCheck_;
  Derived<bool> isOpen_{[this] { return model_.isExpanded.get(); }};
  Derived<bool> trayIsOnShow_{
      [this] { return model_.presentation() == Presentation::expanded && model_.tab == Tab::tray; }};
  /// The body was opened by somebody at the keyboard.
  bool openedByKeyboard_ = false;
  std::vector<Subscription> subscriptions_;
};

}  // namespace tarnwick
