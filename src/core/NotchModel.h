#pragma once
#include <optional>

#include "base/Animation.h"
#include "base/AppSettings.h"
#include "base/Banner.h"
#include "base/Derived.h"
#include "base/Geometry.h"
#include "base/Observed.h"
#include "base/Presentation.h"
#include "base/Scheduler.h"
#include "base/Tab.h"
#include "base/Transient.h"
#include "claude/ClaudeService.h"
#include "claude/PermissionService.h"
#include "claude/SessionWatch.h"
#include "claude/TerminalVisits.h"
#include "services/AudioService.h"
#include "services/BluetoothService.h"
#include "services/CalendarService.h"
#include "services/MediaService.h"
#include "services/NotesStore.h"
#include "services/PowerService.h"
#include "services/TrayFiles.h"
#include "services/TrayStore.h"

namespace tarnwick {

struct Desktop;
class DesktopAppearance;
class DisplayBrightness;

/// The state of the notch: what it shows, how large its surface is, and the services that it shows. The
/// controller writes what the pointer does, the services report into it, the views draw it.
class NotchModel : public ObservableObject {
 public:
  /// Makes the services and listens to them; starts none. `desktop` must outlive the model.
  explicit NotchModel(const Desktop& desktop);

  /// The camera notch of the screen, or the area that is taken for one.
  Observed<Size> notchSize{*this, {185, 32}};
  /// The screen has a camera notch.
  Observed<bool> hasNotch{*this, true};
  Observed<bool> isExpanded{*this};
  Observed<bool> isHovering{*this};
  Observed<Tab> tab{*this, Tab::home};
  /// +1 or -1: where the last change of the tab went in the tab bar.
  Observed<double> tabDirection{*this, 1};
  /// Files are being dragged near the notch, which shows the expanded layout for them.
  Observed<bool> isDraggingFiles{*this};
  Observed<bool> isDropTargeted{*this};
  /// What floats beside the surface, such as an open menu, in the panel's coordinates. It counts as surface.
  Observed<std::optional<Rect>> floating{*this};
  /// Another program fills the screen.
  Observed<bool> hiddenForFullscreen{*this};
  Observed<std::optional<Transient>> transient{*this};
  Observed<std::optional<Banner>> banner{*this};
  /// The demonstration drives the model: the pointer and real sessions do not.
  bool showcase = false;

  const DesktopAppearance& appearance;
  DisplayBrightness& brightness;
  AppSettings settings;
  ClaudeService claude;
  PermissionService permissions;
  TerminalVisits terminals;
  MediaService media;
  AudioService audio;
  PowerService power;
  BluetoothService bluetooth;
  CalendarService calendar;
  TrayStore tray;
  TrayFiles trayFiles;
  NotesStore notes;

  Presentation presentation() const { return presentation_.get(); }
  /// The size of the black surface, in points.
  Size size() const;
  /// There is something of the surface on the screen: at rest it shows around a camera only.
  bool isSeen() const { return hasNotch || isHovering || presentation() != Presentation::idle; }

  /// Shows an indicator for that many seconds, in place of the one on show. Nothing while expanded. @return
  /// whether it is shown
  bool show(const Transient& value, double seconds);
  /// The same with what is known more of the indicator on show, or where there is none.
  bool update(const Transient& value, double seconds);
  /// Shows a banner for that many seconds, in place of the one on show. While expanded it waits behind the
  /// body.
  void present(const Banner& value, double seconds);
  void dismissBanner();
  /// A click on the banner: shows the request of the session that it is about, where that can be answered
  /// here; else goes to its terminal, or opens the body.
  void followBanner();
  /// Opens the body: on the given tab, else on the sessions when one of them calls, else on the tab of
  /// before. Of the sessions, where a single one can be answered, that one's request is shown.
  void expand(std::optional<Tab> on = std::nullopt);
  void collapse();
  void setHovering(bool hovering);
  void select(Tab selected);
  void setDraggingFiles(bool dragging);
  /// Writes what the stores have not written yet: for the end of the process.
  void flush() { notes.flush(); }
  /// Puts a scene on stage at once: no animation and no other effect.
  void debugSet(bool expanded, Tab selected, bool hovering);

 private:
  Presentation whatToShow() const;

  Derived<Presentation> presentation_{[this] { return whatToShow(); }};
  Scheduler& scheduler_;
  Task transientTask_;
  Task bannerTask_;
  Subscription trayChanges_;
  SessionWatch claudeWatch_;
};

}  // namespace tarnwick
