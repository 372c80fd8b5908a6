#include "core/HUDService.h"

#include <algorithm>
#include <cmath>

#include "platform/Desktop.h"
#include "platform/Screens.h"

namespace tarnwick {
namespace {

constexpr double step = 1.0 / 16;
constexpr double fineStep = 1.0 / 64;
constexpr double indicatorSeconds = 1.8;

const std::vector volumeKeys{MediaKey::soundUp, MediaKey::soundDown, MediaKey::mute};
const std::vector brightnessKeys{MediaKey::brightnessUp, MediaKey::brightnessDown};

constexpr const char* askedKey = "askedAccessibility";

}  // namespace

HUDService::HUDService(NotchModel& model, const Desktop& desktop)
    : model_(model), keys_(desktop.mediaKeys), brightness_(desktop.brightness) {
  // Without the tap the desktop shows its own display.
  model_.audio.onVolumeChange = [this] {
    if (tap_) showVolume();
  };
  const auto follow = [this] { followSetting(); };
  listeners_ = {model_.settings.observe(follow), brightness_.observe(follow),
      // With a screen a brightness may come.
      desktop.screens.observe(follow), keys_.observe([this] {
        releaseKeys();
        followSetting();
      })};
  followSetting();
  if (model_.settings.replaceHUD && !isTrusted() && !desktop.defaults.boolean(askedKey).value_or(false)) {
    desktop.defaults.set(askedKey, true);
    keys_.requestTrust();
    followSetting();
  }
}

HUDService::~HUDService() { model_.audio.onVolumeChange = nullptr; }

void HUDService::followSetting() {
  if (model_.settings.replaceHUD) {
    startTap(false);
  } else {
    releaseKeys();
  }
}

void HUDService::releaseKeys() {
  tap_.reset();
  brightnessTap_.reset();
}

bool HUDService::isTrusted() const { return tap_ || keys_.isTrusted(volumeKeys); }

void HUDService::startTap(bool prompt) {
  if (prompt && !isTrusted()) keys_.requestTrust();
  const auto handler = [this](const MediaKeyEvent& event) { return handleMediaKey(event); };
  if (!brightness_.current()) {
    brightnessTap_.reset();
  } else if (!brightnessTap_) {
    brightnessTap_ = keys_.tap(brightnessKeys, handler);
  }
  if (!tap_) tap_ = keys_.tap(volumeKeys, handler);
}

void HUDService::showVolume() {
  const AudioService& audio = model_.audio;
  model_.show(audio.muted ? Transient::hud(HUDKind::mute, 0) : Transient::hud(HUDKind::volume, audio.volume),
      indicatorSeconds);
}

bool HUDService::handleMediaKey(const MediaKeyEvent& event) {
  return model_.settings.replaceHUD && carryOut(event);
}

bool HUDService::carryOut(const MediaKeyEvent& event) {
  const double size = event.shift && event.alt ? fineStep : step;
  AudioService& audio = model_.audio;
  switch (event.key) {
    case MediaKey::soundUp:
    case MediaKey::soundDown:
      if (event.down) {
        audio.setVolume(audio.volume + (event.key == MediaKey::soundUp ? size : -size));
        showVolume();
      }
      return true;
    case MediaKey::mute:
      if (event.down) {
        audio.setMuted(!audio.muted);
        showVolume();
      }
      return true;
    case MediaKey::brightnessUp:
      return changeBrightness(size, event.down);
    case MediaKey::brightnessDown:
      return changeBrightness(-size, event.down);
  }
  return false;
}

bool HUDService::changeBrightness(double change, bool down) {
  const std::optional<double> current = brightness_.current();
  if (!current) return false;
  if (down) {
    // However coarse the display, a key does something.
    const double size = std::max(std::abs(change), brightness_.unit());
    const double next = std::clamp(*current + std::copysign(size, change), 0.0, 1.0);
    brightness_.set(next);
    model_.show(Transient::hud(HUDKind::brightness, next), indicatorSeconds);
  }
  return true;
}

}  // namespace tarnwick
