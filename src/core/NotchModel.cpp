#include "core/NotchModel.h"

#include <algorithm>

#include "platform/Desktop.h"

namespace tarnwick {
namespace {

/// How long the power monitor's indicators last, in seconds.
constexpr double powerTransientSeconds = 1.8;

constexpr Animation updateInPlace = spring(0.25, 0.85);
constexpr Animation tabChange = spring(0.38, 0.82);

/// The room beside the notch that an indicator needs, both wings together.
double widthBesideNotch(const Transient& transient) {
  if (std::holds_alternative<Transient::Hud>(transient.value)) return 208;
  if (std::holds_alternative<Transient::Device>(transient.value)) return 248;
  return 192;
}

/// The new indicator takes the place of the old one without leaving the stage.
bool updatesInPlace(const std::optional<Transient>& shown, const Transient& next) {
  if (!shown || shown->value.index() != next.value.index()) return false;
  const auto* from = std::get_if<Transient::Hud>(&shown->value);
  const auto* to = std::get_if<Transient::Hud>(&next.value);
  return !from || (from->kind == HUDKind::brightness) == (to->kind == HUDKind::brightness);
}

}  // namespace

NotchModel::NotchModel(const Desktop& desktop)
    : appearance(desktop.appearance),
      brightness(desktop.brightness),
      settings(desktop.defaults),
      claude(desktop.scheduler, desktop.sounds),
      permissions(desktop.scheduler, claude, desktop.permissions, settings),
      terminals(desktop.scheduler, desktop.foreignProcesses, desktop.processes, desktop.activation),
      media({desktop.scheduler, desktop.folders, desktop.processes, desktop.applications, desktop.images,
          desktop.log}),
      audio(desktop.audioDevices),
      power(desktop.powerSources, desktop.sounds),
      bluetooth(desktop.bluetooth, desktop.scheduler),
      calendar(desktop.calendars, desktop.scheduler),
      tray(desktop.scheduler, desktop.defaults),
      trayFiles(desktop.scheduler, desktop.fileIcons, desktop.fileManager, desktop.sharing),
      notes(desktop.scheduler, desktop.folders),
      scheduler_(desktop.scheduler),
      claudeWatch_(claude, desktop.scheduler, desktop.foreignProcesses, desktop.growingFiles) {
  claude.settings = &settings;
  claude.onBanner = [this](const Banner& value, double seconds) { present(value, seconds); };
  terminals.onLeave = [this] {
    dismissBanner();
    collapse();
  };
  power.onTransient = [this](const Transient& value) { show(value, powerTransientSeconds); };
  power.onBanner = [this](const Banner& value, double seconds) { present(value, seconds); };
  bluetooth.onTransient = [this](const Transient& value, double seconds) { return show(value, seconds); };
  bluetooth.onUpdate = [this](const Transient& value, double seconds) { return update(value, seconds); };
  calendar.onBanner = [this](const Banner& value, double seconds) { present(value, seconds); };
  trayChanges_ = tray.observe([this] { trayFiles.keep(tray.items); });
}

Presentation NotchModel::whatToShow() const {
  if (isExpanded || isDraggingFiles) return Presentation::expanded;
  if (*banner) return Presentation::banner;
  if (*transient) return Presentation::transient;
  if (hiddenForFullscreen && settings.hideInFullscreen) return Presentation::idle;
  if (claude.workingCount() > 0 || claude.anyWaiting()) return Presentation::claude;
  if (settings.showNowPlaying && media.isPlaying()) return Presentation::nowPlaying;
  return Presentation::idle;
}

Size NotchModel::size() const {
  const double width = notchSize->width + 12;
  const double height = notchSize->height;
  Size size{width, height};
  switch (presentation()) {
    case Presentation::expanded:
      // The pages' width. The tab bar does not make it wider: it has the room beside the camera.
      return {std::max(width + 340, 560.0), height + 138};
    case Presentation::banner:
      size = {std::max(width + 180, 400.0), height + 60};
      break;
    case Presentation::transient:
      size.width += widthBesideNotch(**transient);
      break;
    case Presentation::claude:
    case Presentation::nowPlaying:
      size.width += 88;
      break;
    case Presentation::idle:
      break;
  }
  if (isHovering) size = {size.width + 18, size.height + 5};
  return size;
}

bool NotchModel::show(const Transient& value, double seconds) {
  if (isExpanded) return false;
  withAnimation(updatesInPlace(transient, value) ? updateInPlace : notchOpen, [&] { transient = value; });
  transientTask_ =
      scheduler_.after(seconds, [this] { withAnimation(notchClose, [this] { transient = std::nullopt; }); });
  return true;
}

bool NotchModel::update(const Transient& value, double seconds) {
  const std::optional<Transient>& shown = transient;
  const bool isNews = !shown || (*shown != value && shown->key() == value.key());
  return isNews && show(value, seconds);
}

void NotchModel::present(const Banner& value, double seconds) {
  withAnimation(notchOpen, [&] { banner = value; });
  bannerTask_ =
      scheduler_.after(seconds, [this] { withAnimation(notchClose, [this] { banner = std::nullopt; }); });
}

void NotchModel::dismissBanner() {
  bannerTask_.cancel();
  withAnimation(notchClose, [this] { banner = std::nullopt; });
}

void NotchModel::followBanner() {
  const auto session = *banner ? claude.sessions->find(banner.get()->session) : claude.sessions->end();
  if (session != claude.sessions->end() && PermissionService::requestOf(session->second)) {
    const std::string id = session->first;
    expand(Tab::claude);
    permissions.disclosed = id;
    return;
  }
  const bool canVisit = session != claude.sessions->end() && terminals.canVisit(session->second);
  if (!canVisit || !terminals.visit(session->second)) expand();
}

void NotchModel::expand(std::optional<Tab> on) {
  withAnimation(notchOpen, [&] {
    const bool claudeCalls = (*banner && banner.get()->crab) || claude.anyWaiting();
    if (on) {
      tab = *on;
    } else if (claudeCalls) {
      tab = Tab::claude;
    }
    if (tab == Tab::claude && (on || !isExpanded))
      permissions.disclosed = permissions.onlySession();
    else if (!isExpanded)
      permissions.disclosed = std::string();
    bannerTask_.cancel();
    banner = std::nullopt;
    transient = std::nullopt;
    isExpanded = true;
  });
}

void NotchModel::collapse() {
  if (!isExpanded) return;
  withAnimation(notchClose, [this] { isExpanded = false; });
}

void NotchModel::setHovering(bool hovering) {
  if (isHovering == hovering) return;
  withAnimation(notchHover, [&] { isHovering = hovering; });
}

void NotchModel::select(Tab selected) {
  if (tab == selected) return;
  tabDirection = selected > tab ? 1 : -1;
  withAnimation(tabChange, [&] { tab = selected; });
}

void NotchModel::setDraggingFiles(bool dragging) {
  if (isDraggingFiles == dragging) return;
  withAnimation(dragging ? notchOpen : notchClose, [&] { isDraggingFiles = dragging; });
}

void NotchModel::debugSet(bool expanded, Tab selected, bool hovering) {
  isExpanded = expanded;
  tab = selected;
  isHovering = hovering;
}

}  // namespace tarnwick
