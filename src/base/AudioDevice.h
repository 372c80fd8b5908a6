#pragma once
#include <cstdint>
#include <string>

namespace tarnwick {

/// How an audio device is connected: a code of four characters; 0 when it is not known.
using AudioTransport = uint32_t;

namespace transport {

constexpr AudioTransport code(const char (&text)[5]) {
  AudioTransport value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(text[i]);
  return value;
}

inline constexpr AudioTransport unknown = 0;
inline constexpr AudioTransport builtIn = code("bltn");
inline constexpr AudioTransport usb = code("usb ");
inline constexpr AudioTransport bluetooth = code("blue");
inline constexpr AudioTransport bluetoothLowEnergy = code("blea");
inline constexpr AudioTransport hdmi = code("hdmi");
inline constexpr AudioTransport displayPort = code("dprt");
inline constexpr AudioTransport network = code("airp");
inline constexpr AudioTransport virtualDevice = code("virt");
inline constexpr AudioTransport aggregate = code("grup");

}  // namespace transport

/// Something that plays or records sound.
struct AudioDevice {
  /// Never 0, and no two devices have the same.
  uint32_t id = 0;
  /// As the user knows it.
  std::string name;
  AudioTransport transport = transport::unknown;
  bool hasOutput = false;
  bool hasInput = false;

  /// Name of the symbol that stands for it.
  std::string symbol() const;

  friend bool operator==(const AudioDevice&, const AudioDevice&) = default;
};

}  // namespace tarnwick
