#pragma once
#include <QPainterPath>
#include <QWheelEvent>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/Scheduler.h"
#include "core/NotchPanel.h"
#include "platform/GlobalShortcuts.h"
#include "platform/MediaKeys.h"
#include "platform/Screens.h"
#include "platform/WindowActivation.h"
#include "platform/WindowList.h"

namespace tarnwick {

/// What the notch's window shows.
struct PanelContent {
  /// The surface as it is now, in the widget's coordinates.
  struct Surface {
    /// Also while it cannot be seen: it appears when the pointer comes there.
    Rect frame;
    /// Empty while it cannot be seen.
    QPainterPath outline;
    /// What floats beside it at the moment; empty: nothing.
    Rect floating;
  };

  /// Its size is the panel's. It must outlive the panel's use of it; the panel becomes its parent.
  QWidget& widget;
  std::function<Surface()> surface;
  /// Whether what it shows at that point can be scrolled that way, in points.
  std::function<bool(Point at, Point delta)> canFollow = [](Point, Point) { return false; };
};

/// The notch's window as its content sees it.
class HostingPanel : public NotchPanel {
 public:
  /// To be called with each frame in which the surface's outline may have changed.
  virtual void surfaceChanged() = 0;
  /// Points that the fingers travelled for what the event counts as one click of a wheel; nothing when it
  /// came from a wheel.
  virtual std::optional<double> smoothPointsPerClick(const QWheelEvent& event) = 0;
};

/// What the program uses of a display server: one implementation of each port that belongs to it, and the way
/// to a window on it.
class DisplayServer {
 public:
  virtual ~DisplayServer() = default;

  virtual Screens& screens() = 0;
  virtual WindowList& windows() = 0;
  virtual WindowActivation& activation() = 0;
  virtual MediaKeys& mediaKeys() = 0;
  /// The icon theme that programs on it are told; empty: they are told none.
  virtual std::string iconTheme() const { return {}; }
  /// None where the desktop's portal has them, if anybody.
  virtual std::unique_ptr<GlobalShortcuts> makeShortcuts() { return nullptr; }

  /// A window may be larger than the surface, which can cast a shadow then.
  virtual bool hasRoomForShadow() const = 0;
  /// The server must outlive the panel.
  virtual std::unique_ptr<HostingPanel> makePanel(PanelContent content) = 0;
};

/// A way to a display server, as it is before the toolkit starts.
class DisplayConnection {
 public:
  virtual ~DisplayConnection() = default;
  /// The toolkit's plugin for it.
  virtual const char* toolkitPlugin() const = 0;
  /// Begins to follow it. To be called once the toolkit has started; connection and scheduler must outlive
  /// the result.
  virtual std::unique_ptr<DisplayServer> start(Scheduler& scheduler) = 0;
};

}  // namespace tarnwick
