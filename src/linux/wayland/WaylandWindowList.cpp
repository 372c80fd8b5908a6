#include "linux/wayland/WaylandWindowList.h"

#include <unistd.h>

#include <QGuiApplication>

namespace tarnwick {
namespace {

/// What happens at once is told together.
constexpr double settling = 0.1;

}  // namespace

WaylandWindowList::WaylandWindowList(
    Toplevels* toplevels, const WaylandScreens& screens, Scheduler& scheduler)
    : toplevels_(toplevels), screens_(screens), scheduler_(scheduler) {
  if (!toplevels_) return;
  toplevels_->onChange = [this] { changed(); };
  changed();
}

void WaylandWindowList::changed() {
  bool someoneIsActive = false;
  for (const Toplevel& toplevel : toplevels_->all()) {
    if (!toplevel.active) continue;
    someoneIsActive = true;
    for (const std::string& screen : toplevel.screens) front_[screen] = toplevel.id;
  }
  if (someoneIsActive || !QGuiApplication::focusWindow()) someoneIsActive_ = someoneIsActive;
  if (telling_) return;
  telling_ = scheduler_.after(settling, [this] {
    telling_ = {};
    changes_.notifyObservers();
  });
}

std::optional<std::vector<WindowInfo>> WaylandWindowList::onScreen() {
  if (!toplevels_) return std::nullopt;
  const std::string ourselves = QGuiApplication::desktopFileName().toStdString();
  // With one screen, the user is on an empty workspace of it; with several, it may be another one's.
  const bool onEmptyWorkspace = !someoneIsActive_ && screens_.all().size() == 1;
  std::vector<WindowInfo> windows;
  if (onEmptyWorkspace) return windows;
  for (const Toplevel& toplevel : toplevels_->all()) {
    if (!toplevel.fullScreen || toplevel.hidden) continue;
    for (const std::string& name : toplevel.screens) {
      if (const auto front = front_.find(name); front != front_.end() && front->second != toplevel.id)
        continue;
      WindowInfo window{.owner = toplevel.process};
      if (toplevel.application == ourselves) window.owner = ownProcess();
      if (const auto frame = screens_.frameOf(name)) window.bounds = *frame;
      windows.push_back(window);
    }
  }
  return windows;
}

int64_t WaylandWindowList::ownProcess() const { return ::getpid(); }

}  // namespace tarnwick
