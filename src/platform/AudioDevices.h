#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "base/AudioDevice.h"
#include "base/ObservableObject.h"

namespace tarnwick {

/// The two sides of a device.
enum class AudioScope { output, input };

/// The machine's audio hardware, as it is known now. What is not known (yet) is empty; everything that
/// becomes known or changes later is reported. Devices are named by their ids; to an id that is not known,
/// reading answers nothing and writing does nothing.
class AudioDevices {
 public:
  virtual ~AudioDevices() = default;

  /// In the system's order. Only devices that have a name.
  virtual std::vector<AudioDevice> all() const = 0;
  /// The device that programs use unless told otherwise; 0 without one.
  virtual uint32_t defaultDevice(AudioScope scope) const = 0;
  virtual void setDefaultDevice(AudioScope scope, uint32_t id) = 0;

  /// 0…1. What was written is read back at once, until the hardware tells otherwise.
  virtual std::optional<double> volume(uint32_t id, AudioScope scope) const = 0;
  virtual void setVolume(uint32_t id, AudioScope scope, double volume) = 0;
  virtual std::optional<bool> isMuted(uint32_t id, AudioScope scope) const = 0;
  virtual void setMuted(uint32_t id, AudioScope scope, bool muted) = 0;

  /// Calls `onChange` on the main thread when a device came, went or changed its name, or another one became
  /// the default.
  virtual Subscription observe(std::function<void()> onChange) = 0;
  /// Calls `onChange` on the main thread when the system reports another volume or mute of that device, at
  /// most once for each frame on the screen.
  virtual Subscription observeLevels(uint32_t id, AudioScope scope, std::function<void()> onChange) = 0;
};

}  // namespace tarnwick
