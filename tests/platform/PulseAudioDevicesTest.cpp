#include "linux/sound/PulseAudioDevices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <QCoreApplication>

#include "platform/AudioDaemon.h"
#include "showcase/memory/VirtualScheduler.h"

using namespace tarnwick;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr auto output = AudioScope::output;
constexpr auto input = AudioScope::input;

class PulseAudioDevicesTest : public testing::Test {
 protected:
  PulseAudioDevicesTest() { devices.connect(); }

  const AudioDevice* find(const std::string& name) {
    known = devices.all();
    for (const AudioDevice& device : known) {
      if (device.name == name) return &device;
    }
    return nullptr;
  }
  uint32_t idOf(const std::string& name) {
    const AudioDevice* device = find(name);
    return device ? device->id : 0;
  }
  bool connected() {
    return waitUntil([this] { return find("Speakers") && find("Screen") && find("Microphone"); });
  }
  bool comesTo(const std::string& name, AudioScope scope, double volume) {
    return waitUntil([&] { return devices.volume(idOf(name), scope) == volume; });
  }

  AudioDaemon daemon;
  PulseAudioDevices devices{
      TestDesktop::shared().scheduler, [] { return loadPulseModule(TARNWICK_MODULES); }, 0.1};
  std::vector<AudioDevice> known;
};

}  // namespace

TEST_F(PulseAudioDevicesTest, ListsSinksAndSources) {
  EXPECT_THAT(devices.all(), IsEmpty()) << "not there yet";
  ASSERT_TRUE(connected());
  EXPECT_THAT(devices.all(), SizeIs(3)) << "monitors are no microphones";
  const AudioDevice speakers = *find("Speakers"), screen = *find("Screen"), microphone = *find("Microphone");
  EXPECT_TRUE(speakers.hasOutput && !speakers.hasInput);
  EXPECT_TRUE(microphone.hasInput && !microphone.hasOutput);
  EXPECT_EQ(speakers.symbol(), "waveform");
  EXPECT_EQ(screen.symbol(), "tv");
  EXPECT_EQ((std::set{0u, speakers.id, screen.id, microphone.id}.size()), 4u)
      << "ids of their own, and never 0";
  EXPECT_EQ(devices.volume(microphone.id, output), std::nullopt);

  ASSERT_TRUE(daemon.control({"load-module", "module-null-sink", "sink_name=late"}));
  EXPECT_TRUE(waitUntil([this] { return devices.all().size() == 4; }));
  ASSERT_TRUE(daemon.control({"unload-module", "module-null-source"}));
  EXPECT_TRUE(waitUntil([this] { return devices.all().size() == 3 && !find("Microphone"); }));
  EXPECT_EQ(devices.defaultDevice(input), 0u) << "a monitor is none";
}

TEST_F(PulseAudioDevicesTest, FollowsAndChangesTheDefaults) {
  ASSERT_TRUE(connected());
  int changes = 0;
  const auto observer = devices.observe([&] { ++changes; });
  const bool toScreen = devices.defaultDevice(output) == idOf("Speakers");
  ASSERT_TRUE(daemon.control({"set-default-sink", toScreen ? "screen" : "speakers"}));
  EXPECT_TRUE(
      waitUntil([&] { return devices.defaultDevice(output) == idOf(toScreen ? "Screen" : "Speakers"); }));
  EXPECT_EQ(changes, 1);
  devices.setDefaultDevice(output, idOf(toScreen ? "Speakers" : "Screen"));
  EXPECT_TRUE(
      waitUntil([&] { return devices.defaultDevice(output) == idOf(toScreen ? "Speakers" : "Screen"); }));
  EXPECT_EQ(daemon.ask({"get-default-sink"}), toScreen ? "speakers\n" : "screen\n");
  EXPECT_EQ(devices.defaultDevice(input), idOf("Microphone"));
}

TEST_F(PulseAudioDevicesTest, FollowsLevelsFromOutside) {
  ASSERT_TRUE(connected());
  int speakers = 0, microphone = 0, lists = 0;
  const auto observers = {
      devices.observeLevels(idOf("Speakers"), output, [&] { ++speakers; }),
      devices.observeLevels(idOf("Microphone"), input, [&] { ++microphone; }),
      devices.observe([&] { ++lists; }),
  };
  ASSERT_TRUE(daemon.control({"set-sink-volume", "speakers", "32768"}));
  EXPECT_TRUE(comesTo("Speakers", output, 0.5));
  ASSERT_TRUE(daemon.control({"set-sink-volume", "speakers", "150%"}));
  EXPECT_TRUE(comesTo("Speakers", output, 1)) << "amplified is full";
  ASSERT_TRUE(daemon.control({"set-sink-mute", "speakers", "1"}));
  EXPECT_TRUE(waitUntil([&] { return devices.isMuted(idOf("Speakers"), output) == true; }));
  EXPECT_EQ(speakers, 3);
  ASSERT_TRUE(daemon.control({"set-source-volume", "microphone", "16384"}));
  EXPECT_TRUE(comesTo("Microphone", input, 0.25));
  EXPECT_EQ(microphone, 1);
  EXPECT_EQ(speakers, 3);
  EXPECT_EQ(lists, 0);
}

TEST_F(PulseAudioDevicesTest, ChangesLevels) {
  ASSERT_TRUE(connected());
  ASSERT_TRUE(daemon.control({"set-sink-volume", "speakers", "49152", "24576"}));
  ASSERT_TRUE(comesTo("Speakers", output, 0.75)) << "the loudest channel";
  int reports = 0;
  const auto observer = devices.observeLevels(idOf("Speakers"), output, [&] { ++reports; });
  devices.setVolume(idOf("Speakers"), output, 0.5);
  EXPECT_EQ(devices.volume(idOf("Speakers"), output), 0.5) << "at once";
  devices.setMuted(idOf("Speakers"), output, true);
  devices.setVolume(idOf("Microphone"), input, 0.75);
  devices.setMuted(idOf("Microphone"), input, true);
  EXPECT_TRUE(waitUntil([&] { return daemon.ask({"get-source-mute", "microphone"}) == "Mute: yes\n"; }));
  EXPECT_EQ(daemon.ask({"get-sink-mute", "speakers"}), "Mute: yes\n");
  const std::string volume = daemon.ask({"get-sink-volume", "speakers"});
  EXPECT_NE(volume.find("50%"), std::string::npos) << volume;
  EXPECT_NE(volume.find("25%"), std::string::npos) << "the balance stays: " << volume;
  EXPECT_TRUE(waitUntil([&] {
    return daemon.ask({"get-source-volume", "microphone"}).find("75%") != std::string::npos;
  }));
  EXPECT_EQ(reports, 0) << "the echo of own writes is no news";
}

TEST_F(PulseAudioDevicesTest, FindsTheDaemonAgain) {
  ASSERT_TRUE(connected());
  const uint32_t before = idOf("Microphone");
  daemon.end();
  EXPECT_TRUE(waitUntil([this] { return devices.all().empty(); }));
  devices.setVolume(before, input, 0.5);  // nobody is there
  daemon.start();
  ASSERT_TRUE(connected());
  EXPECT_EQ(idOf("Microphone"), before);
  devices.setVolume(before, input, 0.5);
  EXPECT_TRUE(waitUntil([&] {
    return daemon.ask({"get-source-volume", "microphone"}).find("50%") != std::string::npos;
  }));
}

TEST_F(PulseAudioDevicesTest, NeverWaitsForADaemonThatHangs) {
  ASSERT_TRUE(connected());
  QtScheduler& scheduler = TestDesktop::shared().scheduler;
  daemon.stop();
  const double start = scheduler.uptime();
  for (int i = 0; i <= 100; ++i) devices.setVolume(idOf("Speakers"), output, i / 100.0);
  PulseAudioDevices second(scheduler, [] { return loadPulseModule(TARNWICK_MODULES); });
  second.connect();
  QCoreApplication::processEvents();
  EXPECT_LT(scheduler.uptime() - start, 1);
  daemon.resume();
  devices.setVolume(idOf("Speakers"), output, 0.25);
  EXPECT_TRUE(waitUntil([&] {
    return daemon.ask({"get-sink-volume", "speakers"}).find(" 25%") != std::string::npos;
  }));
}

TEST(PulseModule, MayBeMissing) {
  EXPECT_FALSE(loadPulseModule("/nonexistent"));
  VirtualScheduler scheduler;
  PulseAudioDevices devices(scheduler, [] { return loadPulseModule("/nonexistent"); });
  devices.connect();
  scheduler.advance(60);
  EXPECT_THAT(devices.all(), IsEmpty());
  devices.setVolume(1, output, 1);
  devices.setDefaultDevice(output, 1);
}

namespace {

/// A daemon whose answers come when the test says so.
struct FakeDaemon {
  struct Client : PulseClient {
    explicit Client(FakeDaemon& d) : daemon(d) { daemon.client = this; }
    ~Client() override {
      if (daemon.client == this) daemon.client = nullptr;
    }
    void connect() override {
      ++daemon.connections;
      isNew = true;
    }
    bool closes() { return !daemon.isThere && std::exchange(isNew, false); }
    void fetch() override {
      ++daemon.fetches;
      asked = daemon.state();
    }
    void setVolume(AudioScope, const std::string&, uint32_t volume) override {
      ++daemon.volumeWrites;
      daemon.volume = volume;
    }
    void setMuted(AudioScope, const std::string&, bool) override {}
    void setDefault(AudioScope, const std::string&) override {}
    void answer() { onSnapshot(*std::exchange(asked, std::nullopt)); }

    FakeDaemon& daemon;
    std::optional<PulseSnapshot> asked;
    bool isNew = false;
  };

  PulseSnapshot state() const {
    return {{{.scope = output, .key = "sink", .name = "Sink", .volume = volume},
                {.scope = output, .key = "screen", .name = "Screen", .isUnplugged = true}},
        defaultOutput, ""};
  }
  PulseClientMaker maker() {
    return [this] { return std::make_unique<Client>(*this); };
  }

  Client* client = nullptr;
  std::string defaultOutput = "sink";
  bool isThere = true;
  uint32_t volume = PulseClient::fullVolume / 2;
  int connections = 0;
  int fetches = 0;
  int volumeWrites = 0;
};

class PulseEchoTest : public testing::Test {
 protected:
  PulseEchoTest() {
    devices.connect();
    scheduler.settle();
    fake.client->onChange();
    fake.client->answer();
    pass();
    observer = devices.observeLevels(1, output, [this] { ++reports; });
  }
  /// A frame's time.
  void pass() { scheduler.advance(0.02); }
  double volume() { return devices.volume(1, output).value_or(-1); }

  VirtualScheduler scheduler;
  FakeDaemon fake;
  PulseAudioDevices devices{scheduler, [this] { return fake.maker(); }};
  Subscription observer;
  int reports = 0;
};

}  // namespace

TEST_F(PulseEchoTest, OlderAnswersDoNotUndoAWrite) {
  EXPECT_EQ(volume(), 0.5);
  fake.volume = PulseClient::fullVolume / 4;
  fake.client->onChange();
  devices.setVolume(1, output, 0.75);  // after the daemon was asked
  fake.client->answer();
  pass();
  EXPECT_EQ(volume(), 0.75);
  devices.setMuted(1, output, false);
  fake.client->onChange();
  fake.client->onWritten();
  pass();
  EXPECT_FALSE(fake.client->asked) << "the second write is still on its way";
  fake.client->onWritten();
  pass();
  EXPECT_FALSE(fake.client->asked) << "what it has confirmed need not show yet";
  fake.client->onChange();
  scheduler.advance(0.1);
  ASSERT_TRUE(fake.client->asked);
  fake.client->answer();
  EXPECT_EQ(volume(), 0.75);
  EXPECT_EQ(reports, 0);
}

TEST_F(PulseEchoTest, WhatTheDaemonMadeOfAWriteCounts) {
  devices.setVolume(1, output, 0.75);
  fake.volume = PulseClient::fullVolume / 8;  // it refused, or rounds
  fake.client->onWritten();
  scheduler.advance(0.1);
  fake.client->answer();
  EXPECT_EQ(volume(), 0.125);
  EXPECT_EQ(reports, 1);
}

TEST_F(PulseEchoTest, ADragIsWrittenAtMostOnceAFrameAndNeverJumpsBack) {
  const int fetchesBefore = fake.fetches;
  const auto drag = [&](int confirmEvery) {
    const int before = fake.volumeWrites;
    for (int i = 1; i <= 1000; ++i) {  // in a second
      devices.setVolume(1, output, i / 1000.0);
      if (i % confirmEvery == 0 && fake.volumeWrites > before + i / confirmEvery - 1)
        fake.client->onWritten();
      fake.client->onChange();
      if (fake.client->asked) fake.client->answer();
      EXPECT_NEAR(volume(), i / 1000.0, 1e-5);
      scheduler.advance(0.001);
    }
    return fake.volumeWrites - before;
  };
  EXPECT_EQ(drag(1001), 1) << "a daemon that does not confirm is not pressed";
  fake.client->onWritten();
  scheduler.advance(0.02);
  EXPECT_EQ(fake.volume, uint32_t(PulseClient::fullVolume)) << "the last of them is not lost";
  fake.client->onWritten();
  EXPECT_LE(drag(1), 61);
  EXPECT_EQ(fake.fetches, fetchesBefore) << "nobody needs to look meanwhile";
  EXPECT_EQ(reports, 0);
}

TEST_F(PulseEchoTest, ABurstIsReportedOnceAFrame) {
  const int fetchesBefore = fake.fetches;
  for (int i = 0; i < 200; ++i) {  // in a second
    fake.volume = static_cast<uint32_t>(i * 100);
    fake.client->onChange();
    if (fake.client->asked) fake.client->answer();
    scheduler.advance(0.005);
  }
  EXPECT_LE(reports, 61);
  EXPECT_GE(reports, 40);
  EXPECT_LE(fake.fetches - fetchesBefore, 61);
  pass();
  if (fake.client->asked) fake.client->answer();
  EXPECT_EQ(volume(), 19900.0 / PulseClient::fullVolume) << "the last one is not lost";
}

TEST_F(PulseEchoTest, AnUnpluggedOutputIsListedOnlyAsTheDefault) {
  EXPECT_THAT(devices.all(), SizeIs(1));
  fake.defaultOutput = "screen";
  fake.client->onChange();
  fake.client->answer();
  EXPECT_THAT(devices.all(), SizeIs(2));
}

TEST_F(PulseEchoTest, ADaemonThatIsNotThereIsLookedForLessAndLess) {
  const auto connectionsWithin = [&](double seconds) {
    const int before = fake.connections;
    for (double passed = 0; passed < seconds; ++passed) {
      if (fake.client->closes()) fake.client->onClosed();
      scheduler.advance(1);
    }
    return fake.connections - before;
  };
  fake.isThere = false;
  EXPECT_EQ(connectionsWithin(6), 1);
  EXPECT_LE(connectionsWithin(3600), 50);
  fake.isThere = true;
  EXPECT_EQ(connectionsWithin(81), 1) << "it is back";
  fake.client->onChange();
  fake.client->answer();
  fake.isThere = false;
  EXPECT_EQ(connectionsWithin(6), 1) << "another failure";
}
