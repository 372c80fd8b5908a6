#pragma once
#include <cstdint>
#include <string>

namespace tarnwick {

/// How an audio device is connected: with a display over HDMI or DisplayPort, or not at all, as programs make
/// it.
enum class AudioTransport { unknown, builtIn, usb, bluetooth, display, network, software };

/// Something that plays or records sound.
struct AudioDevice {
  /// Never 0, and no two devices have the same.
  uint32_t id = 0;
  /// As the user knows it.
  std::string name;
  AudioTransport transport = AudioTransport::unknown;
  bool hasOutput = false;
  bool hasInput = false;

  /// Name of the symbol that stands for it.
  std::string symbol() const;

  friend bool operator==(const AudioDevice&, const AudioDevice&) = default;
};

}  // namespace tarnwick
