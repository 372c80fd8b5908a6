#include "services/AudioService.h"

#include <algorithm>

#include "base/DisplayText.h"
#include "base/L10n.h"

namespace tarnwick {
namespace {

/// Devices that the system makes for its own use.
constexpr const char* systemDevicePrefix = "CADefaultDevice";

}  // namespace

void AudioService::start() {
  deviceListener_ = devices_.observe([this] { reload(); });
  reload();
}

void AudioService::reload() {
  if (frozen) return;
  std::vector<AudioDevice> playing, recording;
  for (AudioDevice& device : devices_.all()) {
    if (device.name.starts_with(systemDevicePrefix)) continue;
    device.name = displayText(device.name);
    if (device.hasOutput) playing.push_back(device);
    if (device.hasInput) recording.push_back(device);
  }
  outputs = std::move(playing);
  inputs = std::move(recording);
  outputID = devices_.defaultDevice(AudioScope::output);
  inputID = devices_.defaultDevice(AudioScope::input);
  attachListeners();
  readLevels();
}

void AudioService::attachListeners() {
  if (listenedOutput_ != outputID) {
    listenedOutput_ = outputID;
    outputListener_ = devices_.observeLevels(outputID, AudioScope::output, [this] {
      readLevels();
      if (onVolumeChange && !frozen) onVolumeChange();
    });
  }
  if (listenedInput_ != inputID) {
    listenedInput_ = inputID;
    inputListener_ = devices_.observeLevels(inputID, AudioScope::input, [this] { readLevels(); });
  }
}

void AudioService::readLevels() {
  if (frozen) return;
  volume = devices_.volume(outputID, AudioScope::output).value_or(0);
  muted = devices_.isMuted(outputID, AudioScope::output).value_or(false);
  inputVolume = devices_.volume(inputID, AudioScope::input).value_or(0);
  inputMuted = devices_.isMuted(inputID, AudioScope::input).value_or(false);
}

void AudioService::setVolume(double value) {
  const double clamped = std::clamp(value, 0.0, 1.0);
  if (muted && clamped > 0) setMuted(false);
  // What is amplified beyond 1 shows as 1, and does not become quieter by being turned up.
  if (clamped == volume) return;
  devices_.setVolume(outputID, AudioScope::output, clamped);
  volume = clamped;
}

void AudioService::setMuted(bool value) {
  devices_.setMuted(outputID, AudioScope::output, value);
  muted = value;
}

void AudioService::setInputVolume(double value) {
  const double clamped = std::clamp(value, 0.0, 1.0);
  devices_.setVolume(inputID, AudioScope::input, clamped);
  inputVolume = clamped;
}

void AudioService::setInputMuted(bool value) {
  devices_.setMuted(inputID, AudioScope::input, value);
  inputMuted = value;
}

void AudioService::showcaseFill() {
  frozen = true;
  outputs = std::vector<AudioDevice>{{9001, "AirPods Pro", AudioTransport::bluetooth, true, false},
      {9002, tr("MacBook Pro Speakers", "Haut-parleurs MacBook Pro"), AudioTransport::builtIn, true, false},
      {9003, "Studio Display", AudioTransport::display, true, false}};
  inputs = std::vector<AudioDevice>{
      {9004, tr("MacBook Pro Microphone", "Micro MacBook Pro"), AudioTransport::builtIn, false, true}};
  outputID = 9001;
  inputID = 9004;
  volume = 0.58;
  muted = false;
  inputVolume = 0.72;
  inputMuted = false;
}

void AudioService::showcaseEnd() {
  frozen = false;
  reload();
}

}  // namespace tarnwick
