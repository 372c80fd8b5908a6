#pragma once
#include <QSocketNotifier>
#include <memory>
#include <optional>

#include "app/HookProgram.h"
#include "cli/EventListener.h"
#include "core/NotchController.h"
#include "core/ShortcutService.h"
#include "linux/bus/BacklightBrightness.h"
#include "linux/bus/BluezDevices.h"
#include "linux/bus/DBusNotificationCenter.h"
#include "linux/bus/DesktopDeviceSharing.h"
#include "linux/bus/DesktopFileManager.h"
#include "linux/bus/MessageBus.h"
#include "linux/bus/PermissionsObject.h"
#include "linux/bus/PortalAppearance.h"
#include "linux/bus/PortalShortcuts.h"
#include "linux/bus/SessionsObject.h"
#include "linux/bus/UPowerSources.h"
#include "linux/calendar/EvolutionCalendars.h"
#include "linux/display/DisplayServer.h"
#include "linux/files/AutostartEntry.h"
#include "linux/files/DesktopApplications.h"
#include "linux/files/DesktopFileIcons.h"
#include "linux/files/DesktopSettingsPages.h"
#include "linux/files/InotifyFiles.h"
#include "linux/files/JsonUserDefaults.h"
#include "linux/files/QtImageDecoder.h"
#include "linux/files/XdgFolders.h"
#include "linux/process/Module.h"
#include "linux/process/NoHaptics.h"
#include "linux/process/ProcProcesses.h"
#include "linux/process/QtChildProcesses.h"
#include "linux/process/QtScheduler.h"
#include "linux/process/StandardErrorLog.h"
#include "linux/sound/CanberraSoundPlayer.h"
#include "linux/sound/PulseAudioDevices.h"
#include "settings/SettingsWindow.h"
#include "showcase/Showcase.h"
#include "ui/host/SceneWidget.h"

namespace tarnwick {

/// Puts the overlay together: which adapter serves which port, and what fills the window. Exists while the
/// application object does.
class AppDelegate {
 public:
  explicit AppDelegate(DisplayConnection& connection);

  /// True when this session has an overlay already; then there must not be a second one.
  bool anotherOverlayRuns() const { return notifications_.anotherOverlayRuns(); }
  /// Asks that one to open the notch, or the settings window.
  void openThere(bool settings);
  /// Shows the notch and starts everything behind it; on request opens the settings window soon.
  void applicationDidFinishLaunching(bool withSettings);
  /// Writes what is not written yet. The process may end at once then, whatever still runs.
  void applicationWillTerminate();

 private:
  std::unique_ptr<GlobalShortcuts> makeShortcuts();
  void listenElsewhere();
  std::unique_ptr<NotchPanel> makePanel(NotchModel& model);
  void openSettings();
  void focus(const std::string& id);
  void showRequest();

  QtScheduler scheduler_;
  const std::unique_ptr<DisplayServer> display_;
  MessageBus sessionBus_{scheduler_, sessionBusAddress};
  // Before the name is asked for: who sees that one finds this one, too.
  SessionsObject sessionsObject_{scheduler_, sessionBus_};
  PermissionsObject permissions_{sessionBus_, notifications_};
  DBusNotificationCenter notifications_{scheduler_, sessionBus_};
  std::optional<EventListener> eventListener_;
  std::unique_ptr<QSocketNotifier> eventNotifier_;
  XdgFolders folders_;
  JsonUserDefaults defaults_{folders_};
  CanberraSoundPlayer sounds_{scheduler_};
  NoHaptics haptics_;
  QtChildProcesses processes_;
  QtImageDecoder images_;
  DesktopApplications applications_{display_->activation(), images_};
  StandardErrorLog log_;
  PulseAudioDevices audioDevices_{scheduler_, [] { return loadPulseModule(moduleFolder()); }};
  MessageBus systemBus_{scheduler_, systemBusAddress};
  BacklightBrightness brightness_{scheduler_, systemBus_};
  UPowerSources powerSources_{systemBus_};
  BluezDevices bluetooth_{systemBus_};
  PortalAppearance appearance_{sessionBus_};
  EvolutionCalendars calendars_{
      scheduler_, sessionBus_, hasCalendars(folders_), [] { return loadCalendarReader(moduleFolder()); }};
  DesktopFileIcons fileIcons_{appearance_, [this] { return display_->iconTheme(); }};
  DesktopFileManager fileManager_{sessionBus_};
  DesktopDeviceSharing sharing_{sessionBus_};
  ProcProcesses foreignProcesses_;
  InotifyFiles growingFiles_{scheduler_};
  /// Belongs to the controller's panel.
  ui::SceneWidget* content_ = nullptr;
  std::unique_ptr<NotchController> controller_;
  Subscription sessionChanges_, disclosures_;
  Task showing_;
  const std::unique_ptr<GlobalShortcuts> shortcutKeys_;
  std::optional<ShortcutService> shortcuts_;
  std::optional<Showcase> showcase_;
  AutostartEntry loginItem_{folders_, commandPath()};
  DesktopSettingsPages settingsPages_;
  HookProgram hooks_{folders_.home(), commandPath()};
  std::optional<SettingsWindow> settings_;
  Task loading_;
};

}  // namespace tarnwick
