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
  constexpr const char* families[][2] = {{"airpods max", "airpodsmax"}, {"airpods pro", "airpodspro"},
      {"airpods", "airpods"}, {"beats", "beats.headphones"}};
  const std::string lowerName = lowerCase(name);
  for (const auto& [part, familySymbol] : families) {
    if (lowerName.find(part) != std::string::npos) return familySymbol;
  }
  switch (transport) {
    case AudioTransport::display:
      return "tv";
    case AudioTransport::usb:
      return hasOutput ? "hifispeaker.fill" : "mic.fill";
    case AudioTransport::software:
      return "waveform";
    case AudioTransport::network:
      return "airplayaudio";
    case AudioTransport::builtIn:
      return hasOutput ? "laptopcomputer" : "mic.fill";
    case AudioTransport::bluetooth:
      return "headphones";
    case AudioTransport::unknown:
      break;
  }
  return hasOutput ? "speaker.wave.2.fill" : "mic.fill";
}

}  // namespace tarnwick
