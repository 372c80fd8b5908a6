#include "platform/linux/CanberraSoundPlayer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/TestDesktop.h"
#include "support/TemporaryFolder.h"

using namespace tarnwick;

namespace {

/// An audio daemon without hardware, which tells the names of the streams that play.
class AudioDaemon {
 public:
  AudioDaemon() {
    qputenv("PULSE_SERVER", server_.toUtf8());
    // Everything that is played comes out as the monitor of the null sink.
    waitUntil([this] { return !list("sinks").empty(); });
  }
  ~AudioDaemon() { qunsetenv("PULSE_SERVER"); }

  static std::string list(const char* what) {
    QProcess process;
    process.start("pactl", {"list", what});
    process.waitForFinished();
    return process.exitCode() == 0 ? process.readAllStandardOutput().toStdString() : "";
  }

 private:
  TemporaryFolder folder_;
  QString server_ = "unix:" + QString::fromStdString(folder_.path()) + "/pulse";
  Child daemon_{
      "pulseaudio",
      {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--log-target=null", "-L",
       "module-null-sink", "-L", "module-native-protocol-unix auth-anonymous=1 socket=" + server_.mid(5)}};
};

}  // namespace

TEST(CanberraSoundPlayer, PlaysTheThemesSounds) {
  const AudioDaemon daemon;
  CanberraSoundPlayer player(TestDesktop::shared().scheduler);
  const std::pair<const char*, const char*> cases[] = {
      {"Glass", "complete"}, {"Funk", "message"}, {"Pop", "power-plug"}, {"Basso", "dialog-warning"}};
  for (const auto& [name, event] : cases) {
    const std::string expected = std::string("event.id = \"") + event + '"';
    EXPECT_TRUE(waitUntil([&] {
      player.play(name);
      return AudioDaemon::list("sink-inputs").find(expected) != std::string::npos;
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
