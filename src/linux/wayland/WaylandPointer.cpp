#include "linux/wayland/WaylandPointer.h"

#include <QDropEvent>
#include <QMouseEvent>
#include <QWindow>

namespace tarnwick {
namespace {

Point fromQt(QPointF point) { return {point.x(), point.y()}; }

}  // namespace

WaylandPointer::WaylandPointer(QWindow& window) { window.installEventFilter(this); }

Subscription WaylandPointer::observe(std::function<void()> onActivity) {
  return activity_.observe(std::move(onActivity));
}

void WaylandPointer::changed() {
  if (wantsActivity_) activity_.notifyObservers();
}

void WaylandPointer::isAt(Point position) {
  position_ = position;
  changed();
}

void WaylandPointer::left() {
  // Whoever holds a button keeps the pointer, wherever it goes, unless a drag takes it away.
  if (buttonDown_) ++dragChangeCount_;
  buttonDown_ = false;
  position_.reset();
  changed();
}

bool WaylandPointer::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::Enter:
    case QEvent::MouseMove:
    case QEvent::Wheel:
      isAt(fromQt(static_cast<QSinglePointEvent*>(event)->position()));
      break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease: {
      const auto& click = static_cast<QMouseEvent&>(*event);
      buttonDown_ = (click.buttons() & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton)) != 0;
      isAt(fromQt(click.position()));
      break;
    }
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
      isAt(fromQt(static_cast<QDropEvent*>(event)->position()));
      break;
    case QEvent::Leave:
    case QEvent::DragLeave:
      left();
      break;
    default:
      break;
  }
  return false;
}

}  // namespace tarnwick
