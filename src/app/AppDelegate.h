#pragma once
#include <memory>

#include "core/NotchController.h"
#include "platform/linux/BacklightBrightness.h"
#include "platform/linux/BluezDevices.h"
#include "platform/linux/CanberraSoundPlayer.h"
#include "platform/linux/DBusNotificationCenter.h"
#include "platform/linux/DesktopApplications.h"
#include "platform/linux/EvolutionCalendars.h"
#include "platform/linux/JsonUserDefaults.h"
#include "platform/linux/MessageBus.h"
#include "platform/linux/Module.h"
#include "platform/linux/NoHaptics.h"
#include "platform/linux/PulseAudioDevices.h"
#include "platform/linux/QtChildProcesses.h"
#include "platform/linux/QtImageDecoder.h"
#include "platform/linux/QtScheduler.h"
#include "platform/linux/StandardErrorLog.h"
#include "platform/linux/UPowerSources.h"
#include "platform/linux/X11Connection.h"
#include "platform/linux/X11MediaKeys.h"
#include "platform/linux/X11Pointer.h"
#include "platform/linux/X11Screens.h"
#include "platform/linux/X11WindowList.h"
#include "platform/linux/XdgFolders.h"

namespace tarnwick {

/// Puts the overlay together: which adapter serves which port, and what fills the window. Exists while the
/// application object does.
class AppDelegate {
 public:
  explicit AppDelegate(X11Connection& connection);

  /// True when this session has an overlay already; then there must not be a second one.
  bool anotherOverlayRuns() const { return notifications_.anotherOverlayRuns(); }
  /// Shows the notch and starts everything behind it.
  void applicationDidFinishLaunching();

 private:
  std::unique_ptr<NotchPanel> makePanel(NotchModel& model);

  X11Connection& connection_;
  QtScheduler scheduler_;
  DBusNotificationCenter notifications_{scheduler_};
  XdgFolders folders_;
  JsonUserDefaults defaults_{folders_};
  X11Screens screens_{connection_, scheduler_};
  X11Pointer pointer_{connection_, screens_};
  X11WindowList windows_{connection_, screens_};
  CanberraSoundPlayer sounds_{scheduler_};
  NoHaptics haptics_;
  QtChildProcesses processes_;
  QtImageDecoder images_;
  DesktopApplications applications_{connection_, images_};
  StandardErrorLog log_;
  PulseAudioDevices audioDevices_{scheduler_, [] { return loadPulseModule(moduleFolder()); }};
  X11MediaKeys mediaKeys_{connection_, scheduler_};
  MessageBus systemBus_{scheduler_, systemBusAddress};
  BacklightBrightness brightness_{systemBus_};
  UPowerSources powerSources_{systemBus_};
  BluezDevices bluetooth_{systemBus_};
  MessageBus sessionBus_{scheduler_, sessionBusAddress};
  EvolutionCalendars calendars_{scheduler_, sessionBus_, hasCalendars(folders_),
                                [] { return loadCalendarReader(moduleFolder()); }};
  std::unique_ptr<NotchController> controller_;
};

}  // namespace tarnwick
