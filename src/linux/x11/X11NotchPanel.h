#pragma once
#include <QObject>
#include <QRegion>

#include "linux/display/DisplayServer.h"
#include "linux/display/NotchWindow.h"
#include "linux/x11/ScrollDevices.h"
#include "linux/x11/ScrollGesture.h"
#include "linux/x11/X11Compositor.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Focus.h"
#include "linux/x11/X11Pointer.h"
#include "linux/x11/X11Screens.h"
#include "linux/x11/X11Stacking.h"

namespace tarnwick {

/// The notch's window on X11 and XWayland. It hosts the content; under XWayland the window shows only the
/// part of it that the surface covers.
class X11NotchPanel : public QObject, public HostingPanel {
 public:
  X11NotchPanel(
      X11Connection& connection, const X11Screens& screens, Scheduler& scheduler, PanelContent content);
  ~X11NotchPanel() override;

  void moveTo(const Screen& screen) override;
  Size size() const override;
  void orderFrontRegardless() override;
  Pointer& pointer() override { return pointer_; }
  void setPointerArea(const std::optional<Rect>& area) override;
  void becomeKey() override;
  void resignKey() override;
  /// Free where a compositor blends the window.
  void surfaceChanged() override;
  std::optional<double> smoothPointsPerClick(const QWheelEvent& event) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const ScrollDevices::Traits& traitsOf(const QWheelEvent& event);
  bool scroll(const QWheelEvent& event);
  void place();
  void applySurface();
  void applyPointerArea();
  void setBoundingShape(const std::optional<QRegion>& region);
  void setShape(uint8_t kind, const QRegion& pixels);

  X11Connection& connection_;
  const X11Screens& screens_;
  QWidget& content_;
  std::function<PanelContent::Surface()> surface_;
  std::function<bool(Point, Point)> canFollow_;
  NotchWindow window_;
  X11Pointer pointer_;
  X11Compositor compositor_;
  X11Stacking stacking_;
  X11Focus focus_;
  ScrollDevices scrollDevices_;
  ScrollGesture scrollGesture_;

  /// Of the screen and of the content, in global points.
  Rect screen_, frame_;
  /// In the content's coordinates.
  std::optional<Rect> pointerArea_;
  Rect floating_;
  /// In physical pixels of the window, as the server has them; no bounding shape: the whole window.
  std::optional<QRegion> inputShape_, boundingShape_;
  Subscription compositorChanges_;
};

}  // namespace tarnwick
