#include "ui/host/SceneWidget.h"

#include <QDrag>
#include <QImage>
#include <QMimeData>
#include <QMouseEvent>
#include <QPaintEngine>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "ui/engine/Drawing.h"
#include "ui/host/SceneAccessibility.h"
#include "ui/host/TextWidget.h"
#include "ui/paint/Painter.h"

namespace tarnwick::ui {
namespace {

Point fromQt(QPointF p) { return {p.x(), p.y()}; }

std::optional<PointerButton> fromQt(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return PointerButton::primary;
    case Qt::RightButton:
      return PointerButton::secondary;
    case Qt::MiddleButton:
      return PointerButton::middle;
    default:
      return std::nullopt;
  }
}

Modifiers fromQt(Qt::KeyboardModifiers modifiers) {
  return {modifiers.testFlag(Qt::ShiftModifier), modifiers.testFlag(Qt::ControlModifier),
      modifiers.testFlag(Qt::AltModifier)};
}

Key keyOf(int key) {
  static constexpr std::pair<Qt::Key, Key> keys[] = {{Qt::Key_Tab, Key::tab}, {Qt::Key_Backtab, Key::tab},
      {Qt::Key_Return, Key::enter}, {Qt::Key_Enter, Key::enter}, {Qt::Key_Space, Key::space},
      {Qt::Key_Escape, Key::escape}, {Qt::Key_Left, Key::left}, {Qt::Key_Right, Key::right},
      {Qt::Key_Up, Key::up}, {Qt::Key_Down, Key::down}, {Qt::Key_Home, Key::home}, {Qt::Key_End, Key::end},
      {Qt::Key_PageUp, Key::pageUp}, {Qt::Key_PageDown, Key::pageDown}, {Qt::Key_Menu, Key::menu},
      {Qt::Key_Delete, Key::erase}, {Qt::Key_Backspace, Key::erase}};
  const auto found = std::ranges::find(keys, key, &std::pair<Qt::Key, Key>::first);
  return found == std::end(keys) ? Key::other : found->second;
}

/// Seconds between two frames of what repeats for ever.
constexpr double endlessInterval = 1.0 / 16;

}  // namespace

SceneWidget::SceneWidget(Scheduler& scheduler, Size size, View root)
    : scheduler_(scheduler), scene_(scheduler, size, std::move(root)) {
  setAttribute(Qt::WA_NoSystemBackground);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  installSceneAccessibility();
  scene_.setHost(this);
  resize(int(size.width), int(size.height));
  scene_.onNeedsFrame = [this] { scheduleFrame(); };
}

double SceneWidget::frameInterval() const {
  const double rate = screen() ? screen()->refreshRate() : 60;
  return 1 / std::clamp(rate, 30.0, 240.0);
}

/// What has just changed is shown at once, even shortly after a frame that was due. In the long run there is
/// at most one frame a refresh: the next one is due that much later.
void SceneWidget::scheduleFrame() { runFrameAt(nextDue_ - frameInterval()); }

/// Runs a frame then, or earlier where that has been arranged.
void SceneWidget::runFrameAt(double time) {
  if (!isVisible() || (next_ && nextTime_ <= time)) return;
  nextTime_ = time;
  // Timers count milliseconds; late is worse than early.
  const double wait = std::floor((time - scheduler_.uptime()) * 1000) / 1000;
  next_ = scheduler_.after(std::max(0.0, wait), [this] { runFrame(); });
}

void SceneWidget::runFrame() {
  if (!isVisible()) return;
  next_ = {};
  const double began = scheduler_.uptime();
  scene_.setLead(frameInterval());
  scene_.setPixelRatio(devicePixelRatioF());
  const bool moving = scene_.frame();
  tellAssistiveTechnology(*this);
  QRegion region;
  for (const Rect& area : scene_.takeDamage()) region += toQt(area).toAlignedRect();
  if (onFrame) onFrame();
  if (!region.isEmpty()) {
    nextDue_ = std::max(nextDue_, began) + frameInterval();
    repaint(region & rect());
  }
  // What never ends is not worth as much.
  const double interval = std::max(frameInterval(), scene_.onlyRepeats() ? endlessInterval : 0);
  if (moving) runFrameAt(std::max(began + interval, nextDue_ - frameInterval()));
}

void SceneWidget::showEvent(QShowEvent*) { runFrame(); }

void SceneWidget::resizeEvent(QResizeEvent*) { scene_.resize({double(width()), double(height())}); }

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
    paint(scene_, pixels, fromQt(QRectF(area)).grownBy(margin, margin), {place.dx(), place.dy()});
  }
}

void SceneWidget::mouseMoveEvent(QMouseEvent* event) {
  scene_.input().moved(fromQt(event->position()), fromQt(event->modifiers()));
}

void SceneWidget::mousePressEvent(QMouseEvent* event) {
  if (const auto button = fromQt(event->button()))
    scene_.input().pressed(fromQt(event->position()), *button, fromQt(event->modifiers()));
}

void SceneWidget::openMenuAt(QPointF global) {
  const Point place = fromQt(mapFromGlobal(global));
  scene_.input().pressed(place, PointerButton::secondary);
  scene_.input().released(place, PointerButton::secondary);
}

void SceneWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (const auto button = fromQt(event->button()))
    scene_.input().released(fromQt(event->position()), *button, fromQt(event->modifiers()));
}

void SceneWidget::enterEvent(QEnterEvent* event) { scene_.input().moved(fromQt(event->position())); }

void SceneWidget::leaveEvent(QEvent*) { scene_.input().left(); }

void SceneWidget::wheelEvent(QWheelEvent* event) {
  const std::optional<double> smoothStep = smoothPointsPerClick ? smoothPointsPerClick(*event) : std::nullopt;
  const QPointF delta =
      QPointF(event->angleDelta()) / QWheelEvent::DefaultDeltasPerStep *
      smoothStep.value_or(SceneInput::pointsPerClick);
  event->setAccepted(scene_.input().scrolled(fromQt(event->position()), {delta.x(), delta.y()}, !smoothStep));
}

void SceneWidget::hideEvent(QHideEvent*) {
  scene_.input().cancelled();
  scene_.input().left();
}

void SceneWidget::keyPressEvent(QKeyEvent* event) {
  const Key key = keyOf(event->key());
  const bool isOurs = key == Key::tab || key == Key::escape || key == Key::menu;
  if (writing_ && !isOurs && !scene_.floating()) {
    handToEditor(*event);
    return;
  }
  const bool used = scene_.input().key({key, event->text().toStdString(), fromQt(event->modifiers())});
  event->setAccepted(used);
  if (!used && key == Key::escape) giveBackKeyboard();
}

void SceneWidget::inputMethodEvent(QInputMethodEvent* event) {
  if (writing_) handToEditor(*event);
}

void SceneWidget::setWriting(QWidget* editor) {
  writing_ = editor;
  setAttribute(Qt::WA_InputMethodEnabled, editor != nullptr);
}

/// Not by the application, which would bring back what the editor has no use for.
void SceneWidget::handToEditor(QEvent& event) { static_cast<QObject*>(writing_)->event(&event); }

void SceneWidget::setCursor(Cursor cursor) {
  const auto shape = [=] {
    switch (cursor) {
      case Cursor::arrow:
        return Qt::ArrowCursor;
      case Cursor::pointingHand:
        return Qt::PointingHandCursor;
      case Cursor::grab:
        return Qt::OpenHandCursor;
      case Cursor::text:
        return Qt::IBeamCursor;
    }
    return Qt::ArrowCursor;
  };
  QWidget::setCursor(shape());
}

void SceneWidget::takeKeyboard() {
  if (onTakeKeyboard) onTakeKeyboard();
}

void SceneWidget::giveBackKeyboard() {
  if (onGiveBackKeyboard) onGiveBackKeyboard();
}

void SceneWidget::dragFiles(const std::vector<FilePath>& files, Node& source) {
  QList<QUrl> urls;
  // As bytes: names need not be text.
  for (const FilePath& file : files) {
    urls << QUrl::fromEncoded("file://" + QByteArray::fromStdString(file).toPercentEncoding("/"));
  }
  auto* list = new QMimeData;
  list->setUrls(urls);
  auto* drag = new QDrag(this);
  drag->setMimeData(list);
  const QPixmap picture = QPixmap::fromImage(pictureOf(source, devicePixelRatioF()));
  drag->setPixmap(picture);
  drag->setHotSpot(QRectF(QPointF(), picture.deviceIndependentSize()).center().toPoint());
  // Escape ends it, whoever has the keyboard.
  grabKeyboard();
  drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
  releaseKeyboard();
  // Nobody was told of the pointer meanwhile.
  const QPoint place = mapFromGlobal(QCursor::pos());
  rect().contains(place) ? scene_.input().moved(fromQt(QPointF(place))) : scene_.input().left();
}

std::unique_ptr<HostedText> SceneWidget::makeText() { return std::make_unique<TextWidget>(*this); }

void SceneWidget::focusInEvent(QFocusEvent*) { scene_.input().keyboardChanged(true); }

void SceneWidget::focusOutEvent(QFocusEvent*) { scene_.input().keyboardChanged(false); }

}  // namespace tarnwick::ui
