#include "linux/wayland/WaylandScreens.h"

#include <QGuiApplication>
#include <QScreen>

namespace tarnwick {
namespace {

Rect frame(const QScreen& screen) {
  const QRect geometry = screen.geometry();
  return {double(geometry.x()), double(geometry.y()), double(geometry.width()), double(geometry.height())};
}

/// While the compositor has no output the toolkit makes one up, which has no size.
QList<QScreen*> toolkitScreens() {
  QList<QScreen*> screens = QGuiApplication::screens();
  screens.removeIf([](const QScreen* screen) { return screen->geometry().isEmpty(); });
  return screens;
}

}  // namespace

WaylandScreens::WaylandScreens(Scheduler& scheduler) : scheduler_(scheduler) {
  const auto watch = [this](QScreen* screen) {
    QObject::connect(screen, &QScreen::geometryChanged, &context_, [this] { refreshSoon(); });
  };
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  QObject::connect(qApp, &QGuiApplication::screenAdded, &context_, [this, watch](QScreen* screen) {
    watch(screen);
    refreshSoon();
  });
  QObject::connect(qApp, &QGuiApplication::screenRemoved, &context_, [this] { refreshSoon(); });
}

std::vector<Screen> WaylandScreens::all() const {
  std::vector<Screen> screens;
  for (const QScreen* screen : toolkitScreens()) screens.push_back({frame(*screen), frame(*screen)});
  return screens;
}

Subscription WaylandScreens::observe(std::function<void()> onChange) {
  return changes_.observe(std::move(onChange));
}

QScreen* WaylandScreens::toolkitScreen(const Rect& wanted) const {
  for (QScreen* screen : toolkitScreens()) {
    if (frame(*screen) == wanted) return screen;
  }
  return nullptr;
}

std::optional<Rect> WaylandScreens::frameOf(const std::string& name) const {
  for (const QScreen* screen : toolkitScreens()) {
    if (screen->name().toStdString() == name) return frame(*screen);
  }
  return std::nullopt;
}

void WaylandScreens::refreshSoon() {
  // Changes come in bursts.
  refreshing_ = scheduler_.after(0.02, [this] { changes_.notifyObservers(); });
}

}  // namespace tarnwick
