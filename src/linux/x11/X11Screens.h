#pragma once
#include <QObject>
#include <vector>

#include "base/Scheduler.h"
#include "linux/x11/X11Connection.h"
#include "platform/Screens.h"

namespace tarnwick {

/// The monitors that RandR tells of, and the way between their pixels and global points. As in the toolkit, a
/// monitor's origin is the same in both, and its size in points is that in pixels divided by its pixel ratio.
/// No screen of this platform reports a camera notch.
class X11Screens : public Screens {
 public:
  X11Screens(X11Connection& connection, Scheduler& scheduler);

  std::vector<Screen> all() const override;
  Subscription observe(std::function<void()> onChange) override;

  Point toPoints(double xPixels, double yPixels) const;
  /// Measured by the ratio of the monitor under the rectangle's middle.
  Rect toPoints(const Rect& pixels) const;
  /// Device pixels per point of the monitor under the middle of `points`.
  double ratioAt(const Rect& points) const;

 private:
  struct Monitor {
    Rect pixels;
    double ratio = 1;
    Screen screen;

    Rect toPoints(const Rect& rect) const;
  };

  void refreshSoon();
  void refresh();
  std::vector<Monitor> readMonitors() const;
  void subtractPanels(std::vector<Monitor>& monitors);
  void subtractWorkArea(std::vector<Monitor>& monitors) const;
  const Monitor& monitorAt(double xPixels, double yPixels) const;

  X11Connection& connection_;
  Scheduler& scheduler_;
  std::vector<Monitor> monitors_;
  ObservableObject changes_;
  Subscription events_;
  Task refreshing_;
  QObject context_;
};

}  // namespace tarnwick
