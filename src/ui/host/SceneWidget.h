#pragma once
#include <QPointer>
#include <QRegion>
#include <QWidget>
#include <functional>
#include <optional>

#include "ui/engine/Host.h"
#include "ui/engine/Scene.h"

namespace tarnwick::ui {

/// Shows a scene in a window of the toolkit: frames at the screen's rate, only while something moves, and
/// only what changed is painted.
class SceneWidget : public QWidget, public Host {
 public:
  SceneWidget(Scheduler& scheduler, Size size, View root);

  Scene& scene() { return scene_; }
  /// Called after each frame, before it is on the screen.
  std::function<void()> onFrame;
  /// Points that a smooth device, such as a touchpad, travels for what the event counts as one click of a
  /// wheel; nothing for a wheel, whose clicks scroll farther.
  std::function<std::optional<double>(const QWheelEvent&)> smoothPointsPerClick;
  /// Bring the window the keyboard, and give it back.
  std::function<void()> onTakeKeyboard, onGiveBackKeyboard;

  void setCursor(Cursor cursor) override;
  void takeKeyboard() override;
  void giveBackKeyboard() override;
  void dragFiles(const std::vector<FilePath>& files, Node& source) override;
  std::unique_ptr<HostedText> makeText() override;

 protected:
  friend class TextWidget;
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  /// The scene has a focus of its own, which Tab moves.
  bool focusNextPrevChild(bool) override { return false; }

  /// The click of the secondary button on an editor: the menu takes its place before the button is released,
  /// and the toolkit would tell nobody of that.
  void openMenuAt(QPointF global);

 private:
  /// Has what is typed go to an editor that cannot have the focus yet, as something moves it; null: no more.
  void setWriting(QWidget* editor);
  void handToEditor(QEvent& event);

  double frameInterval() const;
  void scheduleFrame();
  void runFrameAt(double time);
  void runFrame();
  void adoptPixelRatio();

  Scheduler& scheduler_;
  // Editors end with the scene.
  QPointer<QWidget> writing_;
  Scene scene_;
  Task next_;
  double nextTime_ = 0;
  /// When the frames so far would end at the screen's rate; what changed nothing to be seen does not count.
  double nextDue_ = 0;
};

}  // namespace tarnwick::ui
