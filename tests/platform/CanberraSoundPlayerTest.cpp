#include "linux/sound/CanberraSoundPlayer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/AudioDaemon.h"

using namespace tarnwick;

TEST(CanberraSoundPlayer, PlaysTheThemesSounds) {
  AudioDaemon daemon;
  CanberraSoundPlayer player(TestDesktop::shared().scheduler);
  const std::pair<const char*, const char*> cases[] = {
      {"Glass", "complete"}, {"Funk", "message"}, {"Pop", "power-plug"}, {"Basso", "dialog-warning"}};
  for (const auto& [name, event] : cases) {
    const std::string expected = std::string("event.id = \"") + event + '"';
    EXPECT_TRUE(waitUntil([&] {
      player.play(name);
      return daemon.ask({"list", "sink-inputs"}).find(expected) != std::string::npos;
    })) << name;
  }
}

TEST(CanberraSoundPlayer, IsSilentAndQuickWithoutADaemon) {
  qputenv("PULSE_SERVER", "unix:/nonexistent/pulse");
  QtScheduler& scheduler = TestDesktop::shared().scheduler;
  CanberraSoundPlayer player(scheduler);
  const double start = scheduler.uptime();
  for (const char* name : {"Glass", "Funk", "Nothing of that name"}) player.play(name);
  EXPECT_LT(scheduler.uptime() - start, 0.1);
  qunsetenv("PULSE_SERVER");
}
