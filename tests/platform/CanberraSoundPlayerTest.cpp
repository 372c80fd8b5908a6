#include "linux/sound/CanberraSoundPlayer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/AudioDaemon.h"

using namespace tarnwick;

namespace {

bool plays(AudioDaemon& daemon, CanberraSoundPlayer& player, Sound sound, const std::string& event) {
  return waitUntil([&] {
    player.play(sound);
    return daemon.ask({"list", "sink-inputs"}).find("event.id = \"" + event + '"') != std::string::npos;
  });
}

}  // namespace

TEST(CanberraSoundPlayer, PlaysTheThemesSoundsAlsoAfterADaemonThatHangs) {
  AudioDaemon daemon;
  CanberraSoundPlayer player(TestDesktop::shared().scheduler, 0.1);
  const std::pair<Sound, const char*> cases[] = {{Sound::complete, "complete"}, {Sound::message, "message"},
      {Sound::powerPlug, "power-plug"}, {Sound::batteryLow, "dialog-warning"}};
  for (const auto& [sound, event] : cases) EXPECT_TRUE(plays(daemon, player, sound, event)) << event;

  daemon.stop();
  player.play(Sound::complete);
  AudioDaemon other;
  EXPECT_TRUE(plays(other, player, Sound::complete, "complete"));
  daemon.resume();
}

TEST(CanberraSoundPlayer, IsSilentAndQuickWithoutADaemon) {
  qputenv("PULSE_SERVER", "unix:/nonexistent/pulse");
  QtScheduler& scheduler = TestDesktop::shared().scheduler;
  CanberraSoundPlayer player(scheduler);
  const double start = scheduler.uptime();
  for (int i = 0; i < 3; ++i) player.play(Sound::complete);
  EXPECT_LT(scheduler.uptime() - start, 0.1);
  qunsetenv("PULSE_SERVER");
}
