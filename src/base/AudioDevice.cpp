#include "base/AudioDevice.h"

#include <algorithm>

namespace tarnwick {
namespace {

std::string lowerCase(std::string text) {
  // The names that are looked for have no other letters.
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

}  // namespace

std::string AudioDevice::symbol() const {
  // The longer names first: they contain the shorter ones.
  constexpr const char* families[][2] = {{"airpods max", "airpodsmax"},
                                         {"airpods pro", "airpodspro"},
                                         {"airpods", "airpods"},
                                         {"beats", "beats.headphones"}};
  const std::string lowerName = lowerCase(name);
  for (const auto& [part, familySymbol] : families) {
    if (lowerName.find(part) != std::string::npos) return familySymbol;
  }
  switch (transport) {
    case transport::hdmi:
    case transport::displayPort:
      return "tv";
    case transport::usb:
      return hasOutput ? "hifispeaker.fill" : "mic.fill";
    case transport::virtualDevice:
    case transport::aggregate:
      return "waveform";
    case transport::network:
      return "airplayaudio";
    case transport::builtIn:
      return hasOutput ? "laptopcomputer" : "mic.fill";
    case transport::bluetooth:
    case transport::bluetoothLowEnergy:
      return "headphones";
    default:
      return hasOutput ? "speaker.wave.2.fill" : "mic.fill";
  }
}

}  // namespace tarnwick
