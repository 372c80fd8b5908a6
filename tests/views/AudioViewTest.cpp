#include <gmock/gmock.h>

#include "support/ForcedLanguage.h"
#include "views/NotchStage.h"

namespace tarnwick {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

const AudioDevice headphones{1, "Headphones", AudioTransport::bluetooth, true, false};
const AudioDevice screen{2, "Screen", AudioTransport::display, true, false};
const AudioDevice microphone{3, "Microphone", AudioTransport::builtIn, false, true};
const AudioDevice headset{4, "Headset", AudioTransport::usb, false, true};

/// The open page on devices that a test changes as other programs do.
struct AudioStage : NotchStage {
  AudioStage() {
    devices.levels = {{{1, AudioScope::output}, {0.5, false}}, {{2, AudioScope::output}, {0.2, false}},
        {{3, AudioScope::input}, {0.8, false}}};
    devices.plug({headphones, screen, microphone, headset}, 1, 3);
    model.audio.start();
    model.expand(Tab::audio);
    settle();
  }
  Point on(const char* slider, double fraction) {
    const Rect bar = inspect.control(slider)->frame();
    return {bar.x + fraction * bar.width, bar.midY()};
  }
  double output(uint32_t id) { return *devices.volume(id, AudioScope::output); }

  MemoryAudioDevices& devices = desktop.audioDevices;
  MemoryDisplayBrightness& display = desktop.brightness;
};

TEST(AudioView, ShowsTheLevels) {
  const struct {
    double volume;
    bool muted;
    const char *symbol, *number, *help;
  } cases[] = {{0, false, "speaker.fill", "0", "Mute"}, {0.33, false, "speaker.wave.1.fill", "33", "Mute"},
      {0.34, false, "speaker.wave.2.fill", "34", "Mute"}, {0.67, false, "speaker.wave.3.fill", "67", "Mute"},
      {1, false, "speaker.wave.3.fill", "100", "Mute"}, {0.7, true, "speaker.slash.fill", "0", "Unmute"}};
  AudioStage stage;
  stage.display.turn(0.25);
  for (const auto& c : cases) {
    stage.devices.turn(1, AudioScope::output, {c.volume, c.muted});
    stage.settle();
    EXPECT_THAT(stage.inspect.symbols(), Contains(c.symbol)) << c.volume;
    EXPECT_THAT(stage.inspect.texts(), Contains(c.number)) << c.volume;
    EXPECT_TRUE(stage.inspect.control(c.help)) << c.volume;
  }
  EXPECT_THAT(stage.inspect.symbols(), testing::IsSupersetOf({"mic.fill", "sun.min.fill"}));
  stage.inspect.tap(*stage.inspect.control("Unmute"));
  EXPECT_FALSE(*stage.devices.isMuted(1, AudioScope::output));
  stage.inspect.tap(*stage.inspect.control("Mute microphone"));
  EXPECT_TRUE(*stage.devices.isMuted(3, AudioScope::input));
}

TEST(AudioView, FollowsTheDevicesAndChoosesAmongThem) {
  AudioStage stage;
  const auto checked = [&](const char* name) { return stage.inspect.control(name)->interaction()->checked; };
  EXPECT_EQ(checked("Headphones"), true);
  EXPECT_EQ(checked("Screen"), false);
  stage.inspect.tap(*stage.inspect.control("Screen"));
  EXPECT_THAT(stage.devices.defaultWrites, ElementsAre(std::pair(AudioScope::output, 2u)));
  stage.devices.plug({headphones, screen, microphone}, 2, 3);
  stage.settle();
  EXPECT_EQ(checked("Screen"), true);
  EXPECT_EQ(checked("Headphones"), false);
  EXPECT_THAT(stage.inspect.texts(), Contains("20"));

  stage.devices.plug({microphone}, 0, 3);
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Contains("No output devices"));
  stage.inspect.tap(stage.on("Volume", 0.9));
  EXPECT_EQ(stage.model.audio.volume, 0) << "there is nothing to turn";
}

TEST(AudioView, ChoosesTheInputFromAMenu) {
  AudioStage stage;
  const auto menu = stage.inspect.control("Input: Microphone");
  ASSERT_TRUE(menu);
  stage.inspect.tap(*menu);
  stage.settle();
  stage.inspect.tap(*stage.inspect.control("Headset"));
  EXPECT_THAT(stage.devices.defaultWrites, ElementsAre(std::pair(AudioScope::input, 4u)));
  stage.devices.plug({headphones, headset}, 1, 3);
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Contains("Input")) << "the default one is not among them";
}

TEST(AudioView, TurnsTheLevelsByPointerWheelAndKeys) {
  AudioStage stage;
  auto& input = stage.scene.input();
  stage.devices.turn(1, AudioScope::output, {0.5, true});
  stage.settle();
  input.pressed(stage.on("Volume", 0.25));
  EXPECT_NEAR(stage.output(1), 0.25, 1e-9);
  EXPECT_FALSE(*stage.devices.isMuted(1, AudioScope::output)) << "turned up, it is heard";
  input.moved({2000, 300});
  EXPECT_EQ(stage.output(1), 1);
  input.moved({-2000, 300});
  EXPECT_EQ(stage.output(1), 0);
  input.released({-2000, 300});
  // Several in one frame.
  for (int i = 0; i < 3; ++i) stage.inspect.scroll(*stage.inspect.control("Volume"), {0, 48});
  EXPECT_NEAR(stage.output(1), 0.15, 1e-9);
  stage.settle();
  stage.inspect.key(ui::Key::right);
  EXPECT_NEAR(stage.output(1), 0.2, 1e-9);
  stage.inspect.tap(stage.on("Microphone", 0.5));
  EXPECT_NEAR(*stage.devices.volume(3, AudioScope::input), 0.5, 1e-9);
}

TEST(AudioView, FollowsTheBrightnessWhileItIsOpen) {
  AudioStage stage;
  const Rect slider = stage.inspect.control("Brightness")->frame();
  stage.display.turn(0.3);
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Contains("30"));
  stage.display.least = 0.25;
  stage.inspect.tap(stage.on("Brightness", 0.6));
  stage.display.turn(*stage.display.value);
  stage.settle();
  EXPECT_EQ(stage.display.value, 0.5) << "the nearest that the display can do";
  EXPECT_THAT(stage.inspect.texts(), Contains("60")) << "its echo does not push the knob from under the hand";
  stage.inspect.key(ui::Key::left);
  stage.settle();
  EXPECT_EQ(stage.display.value, 0.25);

  const double menu = stage.inspect.control("Input: Microphone")->frame().y;
  stage.display.plug(std::nullopt);
  stage.settle();
  EXPECT_FALSE(stage.inspect.control("Brightness"));
  EXPECT_NEAR(stage.inspect.control("Input: Microphone")->frame().y, menu - (slider.height + 10) / 2, 0.6);
  stage.display.plug(0.75);
  stage.settle();
  EXPECT_THAT(stage.inspect.texts(), Contains("75"));
  stage.model.select(Tab::claude);
  stage.settle();
  EXPECT_FALSE(stage.display.isFollowed()) << "closed, it costs nothing";
}

TEST(AudioView, MarksTheChosenOutputInTheDesktopsAccentColour) {
  AudioStage stage;
  const auto accents = [&](Color color) {
    return stage.inspect
        .all([&](const auto& found) { return found.kind() == "Shape" && found.color() == color; })
        .size();
  };
  EXPECT_EQ(accents(colors::blue), 1u);
  const Color teal{0.1, 0.6, 0.6};
  stage.desktop.appearance.accentColor = teal;
  stage.settle();
  EXPECT_EQ(accents(teal), 1u);
  EXPECT_EQ(accents(colors::blue), 0u);
}

}  // namespace
}  // namespace tarnwick
