#include "services/AudioService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const AudioDevice speakers{.id = 3, .name = "Speakers", .hasOutput = true};
const AudioDevice headset{.id = 7, .name = "Headset", .hasOutput = true, .hasInput = true};
const AudioDevice microphone{.id = 4, .name = "Microphone", .hasInput = true};
const AudioDevice internal{.id = 9, .name = "CADefaultDeviceAggregate-1", .hasOutput = true};

class AudioServiceTest : public testing::Test {
 protected:
  AudioServiceTest() {
    devices.levels = {{{3, AudioScope::output}, {0.5, false}}, {{7, AudioScope::output}, {0.25, true}},
        {{4, AudioScope::input}, {0.75, true}}};
    devices.plug({speakers, internal, headset, microphone}, 3, 4);
    audio.onVolumeChange = [this] { ++volumeChanges; };
  }
  MemoryAudioDevices::Levels& output(uint32_t id) { return devices.levels[{id, AudioScope::output}]; }

  MemoryAudioDevices devices;
  AudioService audio{devices};
  int volumeChanges = 0;
};

TEST_F(AudioServiceTest, MirrorsTheDevices) {
  EXPECT_THAT(*audio.outputs, IsEmpty());
  audio.start();
  EXPECT_THAT(*audio.outputs, ElementsAre(speakers, headset)) << "not those of the system's own";
  EXPECT_THAT(*audio.inputs, ElementsAre(headset, microphone));
  EXPECT_EQ(audio.outputID, 3u);
  EXPECT_EQ(audio.inputID, 4u);
  EXPECT_EQ(audio.volume, 0.5);
  EXPECT_EQ(audio.inputVolume, 0.75);
  EXPECT_TRUE(audio.inputMuted);

  devices.plug({microphone, speakers}, 0, 0);
  EXPECT_THAT(*audio.outputs, ElementsAre(speakers));
  EXPECT_EQ(audio.volume, 0) << "of no device";
  EXPECT_FALSE(audio.inputMuted);
}

TEST_F(AudioServiceTest, FollowsTheLevelsOfTheDefaultDevicesOnly) {
  audio.start();
  devices.turn(3, AudioScope::output, {0.6, true});
  EXPECT_EQ(audio.volume, 0.6);
  EXPECT_TRUE(audio.muted);
  EXPECT_EQ(volumeChanges, 1);
  devices.turn(4, AudioScope::input, {0.1, false});
  EXPECT_EQ(audio.inputVolume, 0.1);
  EXPECT_EQ(volumeChanges, 1) << "an input is no volume";

  const int attachments = devices.attachments;
  devices.plug({speakers, headset, microphone}, 3, 4);
  EXPECT_EQ(devices.attachments, attachments);
  devices.plug({speakers, headset, microphone}, 7, 4);
  EXPECT_EQ(devices.attachments, attachments + 1);
  EXPECT_EQ(audio.volume, 0.25);
  EXPECT_EQ(volumeChanges, 1) << "another device is no change of the volume";
  devices.turn(3, AudioScope::output, {0.9, false});
  EXPECT_EQ(volumeChanges, 1);
  devices.turn(7, AudioScope::output, {0.9, false});
  EXPECT_EQ(volumeChanges, 2);

  int changes = 0;
  const auto observer = audio.observe([&] { ++changes; });
  audio.reload();
  devices.turn(7, AudioScope::output, {0.9, false});
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(volumeChanges, 3) << "what the system reports is reported, changed or not";
  audio.selectOutput(3);
  EXPECT_EQ(audio.outputID, 7u) << "until the system has done it";
  audio.selectInput(7);
  EXPECT_THAT(devices.defaultWrites,
      ElementsAre(std::pair(AudioScope::output, 3u), std::pair(AudioScope::input, 7u)));
}

TEST_F(AudioServiceTest, WritesWithinBoundsAndMirrorsAtOnce) {
  const struct {
    const char* what;
    double volume;
    double expected;
    bool mutedBefore, mutedAfter;
  } cases[] = {
      {"a volume", 0.3, 0.3, false, false},
      {"too much", 1.4, 1, false, false},
      {"too little", -0.2, 0, false, false},
      {"above 0 unmutes", 0.1, 0.1, true, false},
      {"0 stays muted", 0, 0, true, true},
      {"below 0 stays muted", -1, 0, true, true},
  };
  audio.start();
  for (const auto& c : cases) {
    audio.setMuted(c.mutedBefore);
    audio.setVolume(c.volume);
    EXPECT_EQ(audio.volume, c.expected) << c.what;
    EXPECT_EQ(output(3).volume, c.expected) << c.what;
    EXPECT_EQ(audio.muted, c.mutedAfter) << c.what;
    EXPECT_EQ(output(3).muted, c.mutedAfter) << c.what;
  }
  audio.setInputVolume(3);
  EXPECT_EQ(audio.inputVolume, 1);
  EXPECT_TRUE(audio.inputMuted) << "an input is never unmuted by itself";
  audio.setInputMuted(false);
  EXPECT_FALSE((devices.levels[{4, AudioScope::input}].muted));
  EXPECT_EQ(volumeChanges, 0) << "own writes are no news";
}

TEST_F(AudioServiceTest, TheDemonstrationKeepsItsDevices) {
  audio.start();
  audio.showcaseFill();
  devices.turn(3, AudioScope::output, {0.9, true});
  devices.plug({}, 0, 0);
  EXPECT_EQ(audio.outputs->size(), 3u);
  EXPECT_EQ(audio.volume, 0.58);
  EXPECT_EQ(volumeChanges, 0) << "nothing that is shown has changed";
  audio.showcaseEnd();
  EXPECT_THAT(*audio.outputs, IsEmpty());
}

}  // namespace
}  // namespace tarnwick
