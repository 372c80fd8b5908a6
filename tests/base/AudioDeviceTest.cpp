#include "base/AudioDevice.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(AudioDevice, HasASymbolForItsKind) {
  const struct {
    const char* name;
    AudioTransport transport;
    bool hasOutput;
    const char* symbol;
  } cases[] = {
      {"Ann's AirPods Max", AudioTransport::bluetooth, true, "airpodsmax"},
      {"AIRPODS PRO", AudioTransport::bluetooth, false, "airpodspro"},
      {"HDMI Beats", AudioTransport::display, true, "beats.headphones"},
      {"Screen", AudioTransport::display, true, "tv"},
      {"Dock", AudioTransport::usb, true, "hifispeaker.fill"},
      {"Camera", AudioTransport::usb, false, "mic.fill"},
      {"Loopback", AudioTransport::software, true, "waveform"},
      {"Kitchen", AudioTransport::network, true, "airplayaudio"},
      {"Speakers", AudioTransport::builtIn, true, "laptopcomputer"},
      {"Microphone", AudioTransport::builtIn, false, "mic.fill"},
      {"Headset", AudioTransport::bluetooth, true, "headphones"},
      {"Interface", AudioTransport::unknown, true, "speaker.wave.2.fill"},
      {"Interface", AudioTransport::unknown, false, "mic.fill"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ((AudioDevice{1, c.name, c.transport, c.hasOutput, !c.hasOutput}.symbol()), c.symbol) << c.name;
  }
}

}  // namespace
}  // namespace tarnwick
