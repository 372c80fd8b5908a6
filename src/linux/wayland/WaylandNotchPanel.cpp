#include "linux/wayland/WaylandNotchPanel.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QRegion>
#include <QWheelEvent>
#include <QWindow>
#include <utility>

namespace tarnwick {
namespace {

/// Unless it is set when the first window shows, the toolkit loads fifty megabytes of graphics drivers to see
/// whether they could draw frames around windows.
constexpr const char* noFramesVariable = "QT_WAYLAND_DISABLE_WINDOWDECORATION";
constexpr double anglePerClick = 120;
/// The toolkit makes that many clicks of the points that fingers travel.
constexpr double pointsPerClick = 10;

QWindow& nativeWindow(NotchWindow& window) {
  window.winId();
  return *window.windowHandle();
}

ScrollEvent::Phase phaseOf(const QWheelEvent& event) {
  switch (event.phase()) {
    case Qt::NoScrollPhase:
      return ScrollEvent::Phase::none;
    case Qt::ScrollBegin:
      return ScrollEvent::Phase::began;
    case Qt::ScrollUpdate:
    case Qt::ScrollMomentum:
      return ScrollEvent::Phase::changed;
    case Qt::ScrollEnd:
      return ScrollEvent::Phase::ended;
  }
  return ScrollEvent::Phase::none;
}

}  // namespace

WaylandNotchPanel::WaylandNotchPanel(
    WaylandClient& client, const WaylandScreens& screens, PanelContent content)
    : client_(client),
      screens_(screens),
      content_(content.widget),
      surface_(std::move(content.surface)),
      canFollow_(std::move(content.canFollow)),
      pointer_(nativeWindow(window_)) {
  content_.setParent(&window_);
  content_.move(0, 0);
  content_.show();
  window_.resize(content_.size());
  window_.onDragEnter = [this] {
    if (onDragEnter) onDragEnter();
  };
  window_.onDragExit = [this] {
    if (onDragExit) onDragExit();
  };
  window_.onDropFiles = [this](const std::vector<FilePath>& files) {
    if (onDropFiles) onDropFiles(files);
  };
  // Wheel events pass the native window before any widget sees them.
  window_.windowHandle()->installEventFilter(this);
  content_.installEventFilter(this);
  if (Toplevels* toplevels = client_.toplevels()) {
    // Not every compositor takes the keyboard away when somebody clicks on another window.
    toplevels->onActivate = [this] {
      if (window_.isActiveWindow()) resignKey();
    };
  }
  applyPointerArea();
}

WaylandNotchPanel::~WaylandNotchPanel() {
  if (Toplevels* toplevels = client_.toplevels()) toplevels->onActivate = nullptr;
  leaveScreen();
  content_.setParent(nullptr);
}

Size WaylandNotchPanel::size() const { return {double(content_.width()), double(content_.height())}; }

void WaylandNotchPanel::moveTo(const Screen& screen) {
  if (layer_ && screen.frame == screen_) return;
  screen_ = screen.frame;
  if (isShown_) place();
}

void WaylandNotchPanel::orderFrontRegardless() {
  isShown_ = true;
  place();
}

/// A surface that has a layer cannot change its output: it goes there as another one.
void WaylandNotchPanel::place() {
  leaveScreen();
  QScreen* screen = screens_.toolkitScreen(screen_);
  if (!screen) return;
  window_.setScreen(screen);
  window_.resize(content_.size());
  QWindow& native = nativeWindow(window_);
  native.resize(content_.size());
  if (!native.handle()) native.create();
  layer_ = client_.makeLayerSurface(native, *screen);
  if (!layer_) return;
  layer_->onClosed = [this] { leaveScreen(); };
  const bool isSet = qEnvironmentVariableIsSet(noFramesVariable);
  // Programs that are started from here shall not see it.
  if (!isSet) qputenv(noFramesVariable, "1");
  window_.show();
  if (!isSet) qunsetenv(noFramesVariable);
  if (wantsKeyboard_) layer_->setKeyboard(LayerSurface::Keyboard::exclusive);
}

void WaylandNotchPanel::leaveScreen() {
  if (!layer_) return;
  layer_.reset();
  window_.hide();
  window_.windowHandle()->destroy();
  pointer_.left();
}

void WaylandNotchPanel::setPointerArea(const std::optional<Rect>& area) {
  if (area == pointerArea_) return;
  pointerArea_ = area;
  applyPointerArea();
}

void WaylandNotchPanel::surfaceChanged() {
  const Rect floating = surface_().floating;
  if (floating != std::exchange(floating_, floating)) applyPointerArea();
}

void WaylandNotchPanel::applyPointerArea() {
  QRegion area;
  if (pointerArea_) {
    for (const Rect& part : {*pointerArea_, floating_}) {
      area |= QRectF(part.x, part.y, part.width, part.height).toAlignedRect();
    }
    area &= content_.rect();
  }
  // No region at all would be the whole window.
  window_.windowHandle()->setMask(area.isEmpty() ? QRegion(-1, -1, 1, 1) : area);
}

void WaylandNotchPanel::becomeKey() {
  wantsKeyboard_ = true;
  // Only who insists gets it without a click. Once it is here, a click elsewhere may take it away.
  if (layer_ && !window_.isActiveWindow()) layer_->setKeyboard(LayerSurface::Keyboard::exclusive);
}

void WaylandNotchPanel::resignKey() {
  if (window_.isActiveWindow()) QGuiApplication::inputMethod()->commit();
  if (QWidget* editor = window_.focusWidget()) editor->clearFocus();
  if (std::exchange(wantsKeyboard_, false) && layer_) layer_->setKeyboard(LayerSurface::Keyboard::none);
  if (window_.isActiveWindow() && client_.toplevels()) client_.toplevels()->giveBackKeyboard();
}

void WaylandNotchPanel::keyChanged(bool has) {
  if (layer_ && wantsKeyboard_) {
    layer_->setKeyboard(has ? LayerSurface::Keyboard::onDemand : LayerSurface::Keyboard::none);
  }
  // Some compositors give it to whatever is clicked on.
  if (has && !wantsKeyboard_) return resignKey();
  wantsKeyboard_ = wantsKeyboard_ && has;
  if (onKeyChange) onKeyChange(has);
}

bool WaylandNotchPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched != &content_) {
    return event->type() == QEvent::Wheel && scroll(static_cast<const QWheelEvent&>(*event));
  }
  switch (event->type()) {
    case QEvent::Resize:
      if (layer_ && window_.size() != content_.size()) place();
      if (onResize) onResize();
      break;
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
      keyChanged(event->type() == QEvent::WindowActivate);
      break;
    default:
      break;
  }
  return false;
}

std::optional<double> WaylandNotchPanel::smoothPointsPerClick(const QWheelEvent& event) {
  if (event.phase() == Qt::NoScrollPhase) return std::nullopt;
  return pointsPerClick;
}

bool WaylandNotchPanel::scroll(const QWheelEvent& event) {
  const QPointF way = QPointF(event.angleDelta()) / anglePerClick * pointsPerClick;
  const QPointF place = event.position();
  return onScroll &&
         onScroll({.phase = phaseOf(event),
             .momentum = event.phase() == Qt::ScrollMomentum,
             .precise = smoothPointsPerClick(event).has_value(),
             .directionInverted = event.inverted(),
             .deltaX = way.x(),
             .deltaY = way.y(),
             .contentCanFollow = canFollow_({place.x(), place.y()}, {way.x(), way.y()})});
}

}  // namespace tarnwick
