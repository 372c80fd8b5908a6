#include "linux/x11/X11NotchPanel.h"

#include <xcb/shape.h>

#include <QGuiApplication>
#include <QInputMethod>
#include <QPointingDevice>
#include <QTransform>
#include <QWheelEvent>
#include <QWindow>
#include <cmath>
#include <utility>

namespace tarnwick {
namespace {

/// The toolkit's connection: requests about its window must follow those that made it.
xcb_connection_t* toolkitConnection() {
  return qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

QRect roundedOut(const Rect& rect, double ratio) {
  const int left = static_cast<int>(std::floor(rect.x * ratio)),
            top = static_cast<int>(std::floor(rect.y * ratio));
  return {left, top, static_cast<int>(std::ceil(rect.right() * ratio)) - left,
      static_cast<int>(std::ceil(rect.bottom() * ratio)) - top};
}

}  // namespace

X11NotchPanel::X11NotchPanel(
    X11Connection& connection, const X11Screens& screens, Scheduler& scheduler, PanelContent content)
    : connection_(connection),
      screens_(screens),
      content_(content.widget),
      surface_(std::move(content.surface)),
      canFollow_(std::move(content.canFollow)),
      pointer_(connection, screens, scheduler),
      compositor_(connection),
      stacking_(connection, scheduler, static_cast<xcb_window_t>(window_.winId())),
      focus_(connection),
      scrollDevices_(connection),
      scrollGesture_(scheduler, [this](const ScrollEvent& event) { return onScroll && onScroll(event); }) {
  content_.setParent(&window_);
  content_.move(0, 0);
  content_.show();
  window_.onDragEnter = [this] {
    if (onDragEnter) onDragEnter();
  };
  window_.onDragExit = [this] {
    if (onDragExit) onDragExit();
  };
  window_.onDropFiles = [this](const std::vector<FilePath>& files) {
    if (onDropFiles) onDropFiles(files);
  };
  window_.onCrossing = [this] { pointer_.noteActivity(); };
  // Wheel events pass the native window before any widget sees them.
  window_.windowHandle()->installEventFilter(this);
  content_.installEventFilter(this);
  compositorChanges_ = compositor_.observe([this] { applySurface(); });
  applyPointerArea();
}

X11NotchPanel::~X11NotchPanel() { content_.setParent(nullptr); }

Size X11NotchPanel::size() const { return {double(content_.width()), double(content_.height())}; }

void X11NotchPanel::moveTo(const Screen& screen) {
  screen_ = screen.frame;
  place();
}

void X11NotchPanel::place() {
  frame_ = {
      std::round(screen_.midX() - size().width / 2), std::round(screen_.y), size().width, size().height};
  pointer_.setOrigin(frame_.origin());
  if (!connection_.isXWayland()) {
    window_.setGeometry(int(frame_.x), int(frame_.y), content_.width(), content_.height());
  }
  applySurface();
  applyPointerArea();
}

void X11NotchPanel::orderFrontRegardless() {
  window_.show();
  window_.raise();
}

void X11NotchPanel::setPointerArea(const std::optional<Rect>& area) {
  if (area == pointerArea_) return;
  pointerArea_ = area;
  if (connection_.isXWayland()) applySurface();
  applyPointerArea();
}

void X11NotchPanel::surfaceChanged() {
  const Rect floating = surface_().floating;
  if (floating != std::exchange(floating_, floating)) applyPointerArea();
  if (connection_.isXWayland() || !compositor_.isRunning()) applySurface();
}

void X11NotchPanel::applySurface() {
  if (connection_.isXWayland()) {
    // Clicks on the empty part of a window never reach Wayland windows below it, whatever its shape.
    // While nothing is to be seen, it is there for the pointer only.
    const PanelContent::Surface shown = surface_();
    const Rect seen = shown.outline.isEmpty() ? pointerArea_.value_or(Rect{}) : shown.frame;
    const QRect surface = roundedOut(seen.united(floating_), 1) & content_.rect();
    // Before its first layout there is nothing to cover.
    const QRect part = surface.isEmpty() ? QRect(content_.width() / 2, 0, 1, 1) : surface;
    const QRect place = part.translated(int(frame_.x), int(frame_.y));
    if (place == window_.geometry() && content_.pos() == -part.topLeft()) return;
    window_.setGeometry(place);
    content_.move(-part.topLeft());
    applyPointerArea();
  } else if (compositor_.isRunning()) {
    setBoundingShape(std::nullopt);
  } else {
    const double ratio = screens_.ratioAt(frame_);
    const QPainterPath outline = QTransform::fromScale(ratio, ratio).map(surface_().outline);
    setBoundingShape(QRegion(outline.toFillPolygon().toPolygon()) | roundedOut(floating_, ratio));
  }
}

void X11NotchPanel::applyPointerArea() {
  QRegion pixels;
  if (pointerArea_) {
    // Where the content begins beside the window, under XWayland.
    const Point content{double(content_.x()), double(content_.y())};
    const double ratio = screens_.ratioAt(frame_);
    for (const Rect& part : {*pointerArea_, floating_}) pixels |= roundedOut(part.movedBy(content), ratio);
    pixels &= roundedOut({0, 0, double(window_.width()), double(window_.height())}, ratio);
  }
  if (inputShape_ == pixels) return;
  inputShape_ = pixels;
  setShape(XCB_SHAPE_SK_INPUT, pixels);
}

void X11NotchPanel::setBoundingShape(const std::optional<QRegion>& region) {
  if (boundingShape_ == region) return;
  boundingShape_ = region;
  if (region) return setShape(XCB_SHAPE_SK_BOUNDING, *region);
  xcb_shape_mask(toolkitConnection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
      static_cast<xcb_window_t>(window_.winId()), 0, 0, XCB_PIXMAP_NONE);
  xcb_flush(toolkitConnection());
}

void X11NotchPanel::setShape(uint8_t kind, const QRegion& pixels) {
  std::vector<xcb_rectangle_t> rectangles;
  for (const QRect& rect : pixels) {
    rectangles.push_back({static_cast<int16_t>(rect.x()), static_cast<int16_t>(rect.y()),
        static_cast<uint16_t>(rect.width()), static_cast<uint16_t>(rect.height())});
  }
  xcb_shape_rectangles(toolkitConnection(), XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_YX_BANDED,
      static_cast<xcb_window_t>(window_.winId()), 0, 0, static_cast<uint32_t>(rectangles.size()),
      rectangles.data());
  xcb_flush(toolkitConnection());
}

void X11NotchPanel::becomeKey() { focus_.take(static_cast<xcb_window_t>(window_.winId())); }

void X11NotchPanel::resignKey() {
  if (window_.isActiveWindow()) QGuiApplication::inputMethod()->commit();
  if (QWidget* editor = window_.focusWidget()) editor->clearFocus();
  focus_.giveBack();
}

bool X11NotchPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &content_) {
    if (event->type() == QEvent::Resize) {
      place();
      if (onResize) onResize();
    }
    const bool activated = event->type() == QEvent::WindowActivate;
    if (onKeyChange && (activated || event->type() == QEvent::WindowDeactivate)) onKeyChange(activated);
    return false;
  }
  return event->type() == QEvent::Wheel && scroll(static_cast<const QWheelEvent&>(*event));
}

const ScrollDevices::Traits& X11NotchPanel::traitsOf(const QWheelEvent& event) {
  return scrollDevices_.traits(static_cast<uint16_t>(event.pointingDevice()->systemId()));
}

std::optional<double> X11NotchPanel::smoothPointsPerClick(const QWheelEvent& event) {
  const auto& traits = traitsOf(event);
  // Only devices that scroll smoothly come with pixels; a wheel with finer steps than clicks stays a wheel.
  if (!traits.smooth || event.pixelDelta().isNull()) return std::nullopt;
  return traits.pointsPerClick;
}

bool X11NotchPanel::scroll(const QWheelEvent& event) {
  constexpr double anglePerClick = 120;
  const auto& traits = traitsOf(event);
  const QPointF way = QPointF(event.angleDelta()) / anglePerClick * traits.pointsPerClick;
  const QPointF place = event.position() - content_.pos();
  return scrollGesture_.step({.precise = smoothPointsPerClick(event).has_value(),
      .directionInverted = traits.natural,
      .deltaX = way.x(),
      .deltaY = way.y(),
      .contentCanFollow = canFollow_({place.x(), place.y()}, {way.x(), way.y()})});
}

}  // namespace tarnwick
