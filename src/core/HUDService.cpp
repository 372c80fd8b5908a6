#include "core/HUDService.h"

#include <algorithm>

#include "platform/Desktop.h"

namespace tarnwick {
namespace {

constexpr double step = 1.0 / 16;
constexpr double fineStep = 1.0 / 64;
constexpr unsigned fineFlags = modifierflag::option | modifierflag::shift;

constexpr double indicatorSeconds = 1.8;
constexpr double trustInterval = 2;

constexpr const char* askedKey = "askedAccessibility";

}  // namespace

HUDService::HUDService(NotchModel& model, const Desktop& desktop)
    : model_(model), keys_(desktop.mediaKeys), brightness_(desktop.brightness) {
  // Without the tap the desktop shows its own display.
  model_.audio.onVolumeChange = [this] {
    if (tap_) showVolume();
  };
  if (model_.settings.replaceHUD) {
    if (!keys_.isTrusted() && !desktop.defaults.boolean(askedKey).value_or(false)) {
      desktop.defaults.set(askedKey, true);
      keys_.requestTrust();
    }
    startTap(false);
  }
  trustTimer_ = desktop.scheduler.every(trustInterval, [this] {
    if (model_.settings.replaceHUD) startTap(false);
  });
  settingListener_ = model_.settings.observe([this] { followSetting(); });
  moveListener_ = keys_.observe([this] {
    tap_.reset();
    brightnessTap_.reset();
    followSetting();
  });
}

HUDService::~HUDService() { model_.audio.onVolumeChange = nullptr; }

void HUDService::followSetting() {
  if (model_.settings.replaceHUD) {
    startTap(false);
  } else {
    tap_.reset();
    brightnessTap_.reset();
  }
}

void HUDService::startTap(bool prompt) {
  if (prompt && !tap_ && !keys_.isTrusted()) keys_.requestTrust();
  const auto handler = [this](int code, bool down, unsigned flags) {
    return handleMediaKey(code, down, flags);
  };
  if (!brightnessTap_ && brightness_.current()) {
    brightnessTap_ = keys_.tap({mediakey::brightnessUp, mediakey::brightnessDown}, handler);
  }
  if (!tap_) tap_ = keys_.tap({mediakey::soundUp, mediakey::soundDown, mediakey::mute}, handler);
}

void HUDService::showVolume() {
  const AudioService& audio = model_.audio;
  model_.show(audio.muted ? Transient::hud(HUDKind::mute, 0) : Transient::hud(HUDKind::volume, audio.volume),
              indicatorSeconds);
}

bool HUDService::handleMediaKey(int code, bool down, unsigned flags) {
  if (!model_.settings.replaceHUD) return false;
  const double size = (flags & fineFlags) == fineFlags ? fineStep : step;
  AudioService& audio = model_.audio;
  switch (code) {
    case mediakey::soundUp:
    case mediakey::soundDown:
      if (down) {
        audio.setVolume(audio.volume + (code == mediakey::soundUp ? size : -size));
        showVolume();
      }
      return true;
    case mediakey::mute:
      if (down) {
        audio.setMuted(!audio.muted);
        showVolume();
      }
      return true;
    case mediakey::brightnessUp:
      return changeBrightness(size, down);
    case mediakey::brightnessDown:
      return changeBrightness(-size, down);
    default:
      return false;
  }
}

bool HUDService::changeBrightness(double change, bool down) {
  const std::optional<double> current = brightness_.current();
  if (!current) return false;
  if (down) {
    const double next = std::clamp(*current + change, 0.0, 1.0);
    brightness_.set(next);
    model_.show(Transient::hud(HUDKind::brightness, next), indicatorSeconds);
  }
  return true;
}

}  // namespace tarnwick
