#pragma once
#include <QObject>
#include <QPainterPath>
#include <QRegion>

#include "core/NotchPanel.h"
#include "linux/x11/NotchWindow.h"
#include "linux/x11/ScrollDevices.h"
#include "linux/x11/ScrollGesture.h"
#include "linux/x11/X11Compositor.h"
#include "linux/x11/X11Connection.h"
#include "linux/x11/X11Focus.h"
#include "linux/x11/X11Screens.h"
#include "linux/x11/X11Stacking.h"

namespace tarnwick {

/// The notch's window on X11 and XWayland. It hosts the content widget, which is always as large as the
/// panel's frame; under XWayland the window shows only the part of it that the surface covers.
class X11NotchPanel : public QObject, public NotchPanel {
 public:
  /// The surface as it is now, in the content's coordinates.
  struct Surface {
    /// Also while it cannot be seen: it appears when the pointer comes there.
    Rect frame;
    /// Empty while it cannot be seen.
    QPainterPath outline;
  };

  /// The content must outlive the panel's use of it; the panel becomes its parent.
  X11NotchPanel(X11Connection& connection, const X11Screens& screens, Scheduler& scheduler, QWidget& content,
                std::function<Surface()> surface);
  ~X11NotchPanel() override;

  void setFrame(const Rect& frame) override;
  Rect frame() const override { return frame_; }
  void orderFrontRegardless() override;
  void setPointerArea(const std::optional<Rect>& area) override;
  bool isKey() const override;
  void resignKey() override;

  /// Takes the keyboard focus, for a text field of the content.
  void becomeKey();
  /// To be called with each frame in which the surface's outline may have changed. Free where a compositor
  /// blends the window.
  void surfaceChanged();

  /// Points that the fingers travelled for what the event counts as one click of a wheel; nothing when it
  /// came from a wheel.
  std::optional<double> smoothPointsPerClick(const QWheelEvent& event);

  /// The pointer came or left the window.
  std::function<void()> onPointerCrossing;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const ScrollDevices::Traits& traitsOf(const QWheelEvent& event);
  bool scroll(const QWheelEvent& event);
  void applySurface();
  void applyPointerArea();
  void setBoundingShape(const std::optional<QRegion>& region);
  void setShape(uint8_t kind, const QRegion& pixels);

  X11Connection& connection_;
  const X11Screens& screens_;
  QWidget& content_;
  std::function<Surface()> surface_;
  NotchWindow window_;
  X11Compositor compositor_;
  X11Stacking stacking_;
  X11Focus focus_;
  ScrollDevices scrollDevices_;
  ScrollGesture scrollGesture_;

  Rect frame_;
  std::optional<Rect> pointerArea_;
  /// In physical pixels of the window, as the server has them; no bounding shape: the whole window.
  std::optional<QRegion> inputShape_, boundingShape_;
  Subscription compositorChanges_;
};

}  // namespace tarnwick
