#include "app/AppDelegate.h"

#include <QPainter>

#include "platform/linux/X11NotchPanel.h"

namespace tarnwick {
namespace {

/// The bare surface, without anything on it: stands in for the root view until there is one.
class PlainSurface : public QWidget {
 public:
  explicit PlainSurface(NotchModel& model) : model_(model) {
    changes_ = model_.observe([this] { update(); });
  }

  QPainterPath outline() const {
    const Size size = model_.size();
    QPainterPath path;
    path.addRoundedRect((width() - size.width) / 2, -16, size.width, size.height + 16, 16, 16);
    return path;
  }

  std::function<void()> onFrame;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline(), Qt::black);
    if (onFrame) onFrame();
  }

 private:
  NotchModel& model_;
  Subscription changes_;
};

}  // namespace

AppDelegate::AppDelegate(X11Connection& connection) : connection_(connection) {}

void AppDelegate::applicationDidFinishLaunching() {
  const Desktop desktop{scheduler_, notifications_, defaults_, folders_, screens_,
                        pointer_,   windows_,       sounds_,   haptics_};
  controller_ =
      std::make_unique<NotchController>(desktop, [this](NotchModel& model) { return makePanel(model); });
}

std::unique_ptr<NotchPanel> AppDelegate::makePanel(NotchModel& model) {
  auto* content = new PlainSurface(model);
  auto panel = std::make_unique<X11NotchPanel>(connection_, screens_, scheduler_, *content,
                                               [content] { return content->outline(); });
  content->onFrame = [panel = panel.get()] { panel->surfaceChanged(); };
  panel->onPointerCrossing = [this] { pointer_.noteActivity(); };
  return panel;
}

}  // namespace tarnwick
