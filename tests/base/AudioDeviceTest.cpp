#include "base/AudioDevice.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

TEST(AudioDevice, HasASymbolForItsKind) {
  constexpr auto firewire = transport::code("1394");
  const struct {
    const char* name;
    AudioTransport transport;
    bool hasOutput;
    const char* symbol;
  } cases[] = {
      {"Ann's AirPods Max", transport::bluetooth, true, "airpodsmax"},
      {"AIRPODS PRO", transport::bluetooth, false, "airpodspro"},
      {"HDMI Beats", transport::hdmi, true, "beats.headphones"},
      {"Screen", transport::hdmi, true, "tv"},
      {"Dock", transport::usb, true, "hifispeaker.fill"},
      {"Camera", transport::usb, false, "mic.fill"},
      {"Loopback", transport::virtualDevice, true, "waveform"},
      {"Both", transport::aggregate, false, "waveform"},
      {"Kitchen", transport::network, true, "airplayaudio"},
      {"Speakers", transport::builtIn, true, "laptopcomputer"},
      {"Microphone", transport::builtIn, false, "mic.fill"},
      {"Headset", transport::bluetoothLowEnergy, true, "headphones"},
      {"Interface", firewire, true, "speaker.wave.2.fill"},
      {"Interface", transport::unknown, false, "mic.fill"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ((AudioDevice{1, c.name, c.transport, c.hasOutput, !c.hasOutput}.symbol()), c.symbol) << c.name;
  }
  EXPECT_EQ(transport::builtIn, 0x626c746eu) << "codes are big-endian";
}

}  // namespace
}  // namespace tarnwick
