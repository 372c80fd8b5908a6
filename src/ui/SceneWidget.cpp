#include "ui/SceneWidget.h"

#include <QImage>
#include <QMouseEvent>
#include <QPaintEngine>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "ui/Drawing.h"
#include "ui/SceneAccessibility.h"

namespace tarnwick::ui {
namespace {

Point fromQt(QPointF p) { return {p.x(), p.y()}; }

/// Points that one notch of a wheel scrolls.
constexpr double wheelStep = 48;

}  // namespace

SceneWidget::SceneWidget(Scheduler& scheduler, Size size, View root)
    : scheduler_(scheduler), scene_(scheduler, size, std::move(root)) {
  setAttribute(Qt::WA_NoSystemBackground);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  installSceneAccessibility();
  resize(int(size.width), int(size.height));
  clock_.setSingleShot(true);
  clock_.setTimerType(Qt::PreciseTimer);
  connect(&clock_, &QTimer::timeout, this, [this] { runFrame(); });
  scene_.onNeedsFrame = [this] { scheduleFrame(); };
}

double SceneWidget::frameInterval() const {
  const double rate = screen() ? screen()->refreshRate() : 60;
  return 1 / std::clamp(rate, 30.0, 240.0);
}

/// The next frame is at once, or a frame's time after the last one.
void SceneWidget::scheduleFrame() {
  if (clock_.isActive() || !isVisible()) return;
  const double wait = lastFrame_ + frameInterval() - scheduler_.uptime();
  clock_.start(std::max(0, int(std::floor(wait * 1000))));
}

void SceneWidget::runFrame() {
  if (!isVisible()) return;
  lastFrame_ = scheduler_.uptime();
  scene_.setLead(frameInterval());
  scene_.setPixelRatio(devicePixelRatioF());
  const bool moving = scene_.frame();
  tellAssistiveTechnology(*this);
  QRegion region;
  for (const Rect& area : scene_.takeDamage()) region += toQt(area).toAlignedRect();
  if (onFrame) onFrame();
  if (!region.isEmpty()) repaint(region & rect());
  if (onFirstFrame) std::exchange(onFirstFrame, nullptr)();
  if (moving) scheduleFrame();
}

void SceneWidget::showEvent(QShowEvent*) { runFrame(); }

/// Paints straight into the window's picture, which spares one of our own and the way from there.
void SceneWidget::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  QPaintDevice* device = painter.paintEngine()->paintDevice();
  const QTransform place = painter.deviceTransform();
  painter.end();
  if (device->devType() != QInternal::Image) return;
  auto* window = static_cast<QImage*>(device);
  // The same pixels as a picture without a ratio: the scene counts in pixels itself.
  QImage pixels(window->bits(), window->width(), window->height(), window->bytesPerLine(), window->format());
  // Where a point is no whole number of pixels, the toolkit has cleared some around.
  const double ratio = scene_.pixelRatio(), margin = ratio == std::round(ratio) ? 0 : 1;
  for (const QRect& area : event->region()) {
    scene_.paint(pixels, fromQt(QRectF(area)).grownBy(margin, margin), {place.dx(), place.dy()});
  }
}

void SceneWidget::mouseMoveEvent(QMouseEvent* event) { scene_.input().moved(fromQt(event->position())); }

void SceneWidget::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) scene_.input().pressed(fromQt(event->position()));
}

void SceneWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) scene_.input().released(fromQt(event->position()));
}

void SceneWidget::enterEvent(QEnterEvent* event) { scene_.input().moved(fromQt(event->position())); }

void SceneWidget::leaveEvent(QEvent*) { scene_.input().left(); }

void SceneWidget::wheelEvent(QWheelEvent* event) {
  const std::optional<double> smoothStep = smoothPointsPerClick ? smoothPointsPerClick(*event) : std::nullopt;
  const QPointF delta =
      QPointF(event->angleDelta()) / QWheelEvent::DefaultDeltasPerStep * smoothStep.value_or(wheelStep);
  event->setAccepted(scene_.input().scrolled(fromQt(event->position()), {delta.x(), delta.y()}));
}

}  // namespace tarnwick::ui
