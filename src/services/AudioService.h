#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "base/AudioDevice.h"
#include "base/Observed.h"
#include "platform/AudioDevices.h"

namespace tarnwick {

/// Mirrors the machine's audio devices, and changes them. Whatever changes them elsewhere shows here.
class AudioService : public ObservableObject {
 public:
  /// `devices` must outlive the service.
  explicit AudioService(AudioDevices& devices) : devices_(devices) {}

  /// Devices that play, in the system's order.
  Observed<std::vector<AudioDevice>> outputs{*this};
  /// Devices that record. A device may be in both lists.
  Observed<std::vector<AudioDevice>> inputs{*this};
  /// The device that plays by default; 0: none.
  Observed<uint32_t> outputID{*this};
  Observed<uint32_t> inputID{*this};
  /// Of the default output, 0…1.
  Observed<double> volume{*this};
  Observed<bool> muted{*this};
  /// Of the default input, 0…1.
  Observed<double> inputVolume{*this};
  Observed<bool> inputMuted{*this};

  /// Called when the system reported another volume or mute of the default output, after it has been read.
  std::function<void()> onVolumeChange;
  /// Nothing is read any more, so that demonstration values stay.
  bool frozen = false;

  /// Begins to follow the devices.
  void start();
  /// Reads everything anew.
  void reload();

  /// Any value; what lies outside 0…1 is taken for the nearer end. A volume above 0 unmutes.
  void setVolume(double value);
  void setMuted(bool value);
  void setInputVolume(double value);
  void setInputMuted(bool value);
  /// Makes a device the default one. The mirror follows when the system has done so.
  void selectOutput(uint32_t id) { devices_.setDefaultDevice(AudioScope::output, id); }
  void selectInput(uint32_t id) { devices_.setDefaultDevice(AudioScope::input, id); }

  /// Devices for the demonstration, until its end.
  void showcaseFill();
  /// Makes one of them the default one, by its place among the outputs.
  void showcaseSelect(size_t index) { outputID = outputs->at(index).id; }
  void showcaseEnd();

 private:
  void attachListeners();
  void readLevels();

  AudioDevices& devices_;
  Subscription deviceListener_;
  Subscription outputListener_;
  Subscription inputListener_;
  /// The devices that the listeners are for.
  uint32_t listenedOutput_ = 0;
  uint32_t listenedInput_ = 0;
};

}  // namespace tarnwick
