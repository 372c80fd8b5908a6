#pragma once
#include <QObject>
#include <memory>

#include "linux/display/DisplayServer.h"
#include "linux/display/NotchWindow.h"
#include "linux/wayland/WaylandClient.h"
#include "linux/wayland/WaylandPointer.h"
#include "linux/wayland/WaylandScreens.h"

namespace tarnwick {

/// The notch's window in a layer of a Wayland compositor.
class WaylandNotchPanel : public QObject, public HostingPanel {
 public:
  WaylandNotchPanel(WaylandClient& client, const WaylandScreens& screens, PanelContent content);
  ~WaylandNotchPanel() override;

  void moveTo(const Screen& screen) override;
  Size size() const override;
  void orderFrontRegardless() override;
  Pointer& pointer() override { return pointer_; }
  void setPointerArea(const std::optional<Rect>& area) override;
  void becomeKey() override;
  void resignKey() override;
  void surfaceChanged() override;
  std::optional<double> smoothPointsPerClick(const QWheelEvent& event) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void place();
  void leaveScreen();
  void applyPointerArea();
  void keyChanged(bool has);
  bool scroll(const QWheelEvent& event);

  WaylandClient& client_;
  const WaylandScreens& screens_;
  QWidget& content_;
  std::function<PanelContent::Surface()> surface_;
  std::function<bool(Point, Point)> canFollow_;
  NotchWindow window_;
  WaylandPointer pointer_;
  std::unique_ptr<LayerSurface> layer_;

  Rect screen_;
  bool isShown_ = false;
  bool wantsKeyboard_ = false;
  /// In the content's coordinates.
  std::optional<Rect> pointerArea_;
  Rect floating_;
};

}  // namespace tarnwick
