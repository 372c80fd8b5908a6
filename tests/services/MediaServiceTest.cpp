#include "services/MediaService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "services/AccentColor.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;

/// "8x8 ff0000" and "8x8 0000ff" in base64.
const std::string redCover = "OHg4IGZmMDAwMA==", blueCover = "OHg4IDAwMDBmZg==";

class MediaServiceTest : public testing::Test {
 protected:
  MediaServiceTest() { desktop.folders.root.write("modules/MediaBridge.so", ""); }

  void start() {
    media.start(settings);
    desktop.processes.input.clear();
  }
  /// The bridge writes these bytes, and all that follows from them happens.
  void bridgeWrites(const std::string& bytes) {
    desktop.processes.output(bytes);
    desktop.scheduler.advance(1);
  }
  void bridgeTells(const std::string& line) { bridgeWrites(line + '\n'); }
  double position(double later = 0) { return media.currentElapsed(desktop.scheduler.now() + later); }

  MemoryDesktop desktop;
  AppSettings settings{desktop.defaults};
  MediaService media{{desktop.scheduler, desktop.folders, desktop.processes, desktop.applications,
      desktop.images, desktop.log}};
};

TEST_F(MediaServiceTest, StartsTheBridgeOnceWhereThereIsOne) {
  start();
  start();
  ASSERT_EQ(desktop.processes.launches.size(), 1u);
  const auto& launch = desktop.processes.launches.front();
  EXPECT_EQ(launch.executable, "/usr/bin/perl");
  EXPECT_THAT(launch.arguments, ElementsAre("-e", _, desktop.folders.modules() + "/MediaBridge.so"));
  desktop.processes.fail("No such file or directory");
  desktop.scheduler.advance(3600);
  EXPECT_THAT(desktop.log.lines, ElementsAre("Tarnwick: media bridge failed: No such file or directory"));
  EXPECT_EQ(desktop.processes.launches.size(), 1u);
  EXPECT_FALSE(desktop.processes.isRunning());

  std::filesystem::remove(desktop.folders.modules() + "/MediaBridge.so");
  start();
  media.nextTrack();
  EXPECT_EQ(desktop.processes.launches.size(), 1u) << "nothing to start";
  EXPECT_EQ(desktop.log.lines.size(), 1u);
}

TEST_F(MediaServiceTest, CoversAreFetchedFromTheNetworkOnlyWhenTheyAreShown) {
  std::string& told = desktop.processes.input;
  media.start(settings);
  EXPECT_EQ(std::exchange(told, ""), "network on\n");
  settings.showNowPlaying = false;
  settings.haptics = false;
  EXPECT_EQ(std::exchange(told, ""), "network off\n");
  desktop.processes.exit();
  desktop.scheduler.advance(4);
  EXPECT_EQ(std::exchange(told, ""), "network off\n") << "a bridge that was started again";
  settings.showNowPlaying = true;
  EXPECT_EQ(told, "network on\n");
}

TEST_F(MediaServiceTest, ABridgeThatEndsIsStartedAgainThreeSecondsLater) {
  start();
  bridgeTells(R"({"title":"Song","playing":true})");
  for (size_t times = 2; times < 5; ++times) {
    bridgeWrites("{\"title\":\"half a li");
    desktop.processes.exit();
    desktop.scheduler.advance(2.9);
    EXPECT_EQ(desktop.processes.launches.size(), times - 1);
    EXPECT_TRUE(media.isPlaying()) << "what was known stays";
    desktop.scheduler.advance(0.2);
    EXPECT_EQ(desktop.processes.launches.size(), times);
    bridgeTells(R"({"title":"Again","playing":true})");
    EXPECT_EQ(media.title.get(), "Again") << "the rest of an old line is forgotten";
  }
}

TEST_F(MediaServiceTest, ALineIsTheWholeState) {
  const struct {
    const char* line;
    const char *title, *artist, *album;
    double duration, elapsed, rate;
    bool playing;
  } cases[] = {
      {R"({"title":"T","artist":"A","album":"B","duration":200.5,"elapsed":12,"rate":0.5,"playing":true})",
          "T", "A", "B", 200.5, 12, 0.5, true},
      {R"({"title":"é \"✨\" \u00e9","artist":"to\u202e the left","album":"\u0000two\nlines"})", "é \"✨\" é",
          "to the left", "two lines", 0, 0, 1, false},
      {R"({"title":1,"artist":null,"album":[],"duration":"9","elapsed":true,"rate":"2","playing":1})", "", "",
          "", 0, 0, 1, false},
      {R"({"title":"T","playing":true,"unknown":{"a":[1,2]}})", "T", "", "", 0, 0, 1, true},
      {"{}\r", "", "", "", 0, 0, 1, false},
  };
  start();
  for (const auto& c : cases) {
    bridgeTells(R"({"title":"Before","artist":"x","album":"y","duration":1,"elapsed":1,"playing":true})");
    bridgeTells(c.line);
    EXPECT_THAT(
        (std::vector{*media.title, *media.artist, *media.album}), ElementsAre(c.title, c.artist, c.album))
        << c.line;
    EXPECT_EQ(media.duration.get(), c.duration) << c.line;
    EXPECT_EQ(media.elapsed.get(), c.elapsed) << c.line;
    EXPECT_EQ(media.rate.get(), c.rate) << c.line;
    EXPECT_EQ(media.isPlaying(), c.playing && *c.title) << c.line;
  }
}

TEST_F(MediaServiceTest, WhatIsNoObjectIsSkipped) {
  start();
  bridgeTells(R"({"title":"Song"})");
  for (const char* line : {"", "[]", R"({"title":"x")", "{\"title\":\"\xff\"}"}) {
    bridgeTells(line);
    EXPECT_EQ(media.title.get(), "Song") << line;
  }
}

TEST_F(MediaServiceTest, AFloodIsHeardOnceAFrameAndWaitsInItsPipe) {
  start();
  int news = 0;
  const auto subscription = media.observe([&] { ++news; });
  std::string flood;
  for (int i = 0; i < 100'000; ++i)
    flood += R"({"timestamp":0,"title":"Title )" + std::to_string(i) + "\"}\n";
  desktop.processes.output(flood);
  desktop.scheduler.advance(1);
  EXPECT_LE(news, 61);
  EXPECT_GT(news, 30);
  desktop.scheduler.advance(10);
  EXPECT_EQ(media.title.get(), "Title 99999");
}

TEST_F(MediaServiceTest, ALineWithoutAnEndIsDropped) {
  LineBuffer buffer;
  const std::string block(1 << 20, 'x');
  size_t most = 0;
  for (int i = 0; i < 100; ++i) {
    EXPECT_THAT(buffer.append(block), IsEmpty());
    most = std::max(most, buffer.data().capacity());
  }
  EXPECT_LT(most, 3 * LineBuffer::longestLine);
  EXPECT_THAT(buffer.append("rest\n{}\nta"), ElementsAre("{}"));
  EXPECT_THAT(buffer.append("il\r\n\n"), ElementsAre("tail\r", ""));
}

TEST_F(MediaServiceTest, KeepsAndDropsTheCover) {
  const auto with = [](int id, const std::string& cover) {
    return R"({"title":"T","artworkId":)" + std::to_string(id) + R"(,"artwork":")" + cover + "\"}\n";
  };
  const auto without = [](int id) { return R"({"title":"T","artworkId":)" + std::to_string(id) + "}\n"; };
  const struct {
    const char* what;
    std::string lines;
    /// First pixel; 0: no cover.
    uint32_t pixel;
  } cases[] = {
      {"a new one", with(7, redCover), 0xffff0000},
      {"the same", with(7, redCover) + without(7), 0xffff0000},
      {"none", with(7, redCover) + without(0), 0},
      {"none, as nothing is said", with(7, redCover) + "{}\n", 0},
      {"another", with(7, redCover) + with(8, blueCover), 0xff0000ff},
      {"no base64", with(7, redCover) + with(8, "OHg4*DAwMDBmZg=="), 0xffff0000},
      {"no picture", with(7, redCover) + with(8, "aGVsbG8="), 0xffff0000},
      {"a picture without an id", with(0, blueCover), 0xff0000ff},
  };
  start();
  for (const bool inOneRead : {true, false}) {
    for (const auto& c : cases) {
      bridgeTells("{}");
      if (inOneRead) {
        bridgeWrites(c.lines);
      } else {
        for (const char byte : c.lines) desktop.processes.output(std::string(1, byte));
        desktop.scheduler.advance(1);
      }
      ASSERT_EQ(media.artwork.get().has_value(), c.pixel != 0) << c.what;
      EXPECT_EQ(c.pixel ? media.artwork.get()->pixels->front() : 0, c.pixel) << c.what;
      EXPECT_EQ(media.accent.get(), c.pixel ? accentOf(**media.artwork) : white()) << c.what;
    }
  }
}

TEST_F(MediaServiceTest, KnowsTheProgramThatPlays) {
  const Application player{.bundle = "/apps/player.desktop", .icon = Image{1, 1, nullptr}};
  desktop.applications.running = {{42, player}, {43, {}}, {2147483647, player}};
  const struct {
    const char* pid;
    bool known;
  } cases[] = {{"42", true}, {"0", true}, {"-1", true}, {"2147483648", true}, {"77", true}, {"\"43\"", true},
      {"43.5", true}, {"43", false}, {"77", false}, {"2147483647", true}, {"99999999999", true}};
  start();
  for (const auto& c : cases) {
    bridgeTells(std::string(R"({"pid":)") + c.pid + R"(,"desktopEntry":"name"})");
    EXPECT_EQ(media.appBundleURL.get(), c.known ? player.bundle : std::nullopt) << c.pid;
    EXPECT_EQ(media.appIcon.get(), c.known ? player.icon : std::nullopt) << c.pid;
  }
  const size_t asked = desktop.applications.namesAskedFor.size();
  EXPECT_EQ(asked, 5u) << "each process once, and the impossible ones never";
  EXPECT_EQ(desktop.applications.namesAskedFor.back(), "name");
  bridgeTells(R"({"pid":2147483647,"desktopEntry":"name","title":"Next"})");
  EXPECT_EQ(desktop.applications.namesAskedFor.size(), asked);

  EXPECT_TRUE(media.canSeek);
  // A window is found, or the player brings its own, or it is started.
  const std::string raising = R"({"pid":42,"canRaise":true})";
  desktop.applications.withWindows = {*player.bundle};
  bridgeTells(raising);
  media.openSourceApp();
  desktop.applications.withWindows.clear();
  EXPECT_EQ(desktop.processes.input, "");
  media.openSourceApp();
  EXPECT_EQ(desktop.processes.input, "raise\n");
  EXPECT_THAT(desktop.applications.started, IsEmpty());
  bridgeTells(R"({"pid":42,"canSeek":false})");
  EXPECT_FALSE(media.canSeek);
  media.openSourceApp();
  media.appBundleURL = std::nullopt;
  media.openSourceApp();
  EXPECT_THAT(desktop.applications.started, ElementsAre("/apps/player.desktop"));
}

TEST_F(MediaServiceTest, ThePositionRunsWithinTheTrack) {
  start();
  const double now = desktop.scheduler.now().secondsSince1970;
  const struct {
    const char* what;
    double elapsed, duration, timestamp;
    bool playing;
    double later, expected;
  } cases[] = {
      {"runs", 10, 100, now, true, 5, 15},
      {"has run since", 10, 100, now - 20, true, 0, 30},
      {"rests", 10, 100, now - 20, false, 5, 10},
      {"ends with the track", 98, 100, now, true, 5, 100},
      {"an unknown length is no end", 98, 0, now, true, 5, 103},
      {"never before the start", 3, 100, now, true, -10, 0},
      {"a position before the start", -5, 100, now, false, 0, 0},
      {"a clock that was set back", 10, 100, now + 60, true, 0, 0},
  };
  for (const auto& c : cases) {
    media.elapsed = c.elapsed;
    media.duration = c.duration;
    media.timestamp = Date{c.timestamp};
    media.playing = c.playing;
    EXPECT_DOUBLE_EQ(media.currentElapsed(Date{now + c.later}), c.expected) << c.what;
  }
  desktop.processes.output(
      R"({"title":"T","elapsed":40,"playing":true})"
      "\n");
  desktop.scheduler.settle();
  EXPECT_DOUBLE_EQ(position(), 40) << "without a timestamp it is from now on";
  EXPECT_DOUBLE_EQ(position(2), 42);
  for (const double clockSetBy : {3600.0, -7200.0}) {
    desktop.scheduler.setClock(clockSetBy);
    EXPECT_DOUBLE_EQ(position(), 40) << "a clock that is set plays nothing";
  }
  desktop.scheduler.advance(3);
  EXPECT_DOUBLE_EQ(position(), 43);
  media.rate = 2;
  EXPECT_DOUBLE_EQ(position(2), 50);
  media.seek(7);
  EXPECT_DOUBLE_EQ(position(2), 11);
}

TEST_F(MediaServiceTest, CommandsToThePlayer) {
  start();
  const struct {
    double seconds;
    const char* command;
  } seeks[] = {{42, "seek 42.0\n"}, {93.25, "seek 93.25\n"}, {0, "seek 0.0\n"}, {0.1, "seek 0.1\n"},
      {1e6, "seek 1000000.0\n"}, {1.0 / 3, "seek 0.3333333333333333\n"}};
  for (const auto& c : seeks) {
    desktop.processes.input.clear();
    media.seek(c.seconds);
    EXPECT_EQ(desktop.processes.input, c.command);
    EXPECT_EQ(media.elapsed.get(), c.seconds);
    EXPECT_EQ(media.timestamp.get(), desktop.scheduler.now());
  }
  desktop.processes.input.clear();
  desktop.scheduler.advance(1);
  const Date before = media.timestamp;
  media.togglePlayPause();
  EXPECT_TRUE(media.playing);
  media.togglePlayPause();
  EXPECT_FALSE(media.playing);
  EXPECT_EQ(media.timestamp.get(), before);
  media.nextTrack();
  media.previousTrack();
  EXPECT_EQ(desktop.processes.input, "cmd 2\ncmd 2\ncmd 4\ncmd 5\n");
}

TEST_F(MediaServiceTest, ADemonstrationIsNotDisturbedAndLeavesNothing) {
  start();
  bridgeTells(R"({"title":"Real","artworkId":1,"artwork":")" + redCover + R"("})");
  media.showcaseBegin();
  for (const int index : {-3, 0, 1, 7}) {
    desktop.scheduler.advance(1);
    media.showcaseTrack(index);
    EXPECT_EQ(media.title.get(), index == 0 ? "Golden Hour Drive" : "Midnight Ferris Wheel") << index;
    EXPECT_EQ(position(), index == 0 ? 71 : 4) << index;
    EXPECT_TRUE(media.isPlaying());
    EXPECT_EQ(media.artwork.get()->width, 300);
    EXPECT_EQ(media.accent.get(), accentOf(**media.artwork));
  }
  bridgeTells(R"({"title":"Meanwhile","artworkId":1})");
  EXPECT_EQ(media.title.get(), "Midnight Ferris Wheel");

  desktop.scheduler.advance(10);
  const double at = position();
  media.showcasePlaying(false);
  desktop.scheduler.advance(10);
  EXPECT_DOUBLE_EQ(position(), at);
  media.showcasePlaying(true);
  EXPECT_DOUBLE_EQ(position(), at);
  EXPECT_DOUBLE_EQ(position(2), at + 2);

  media.showcaseEnd();
  EXPECT_EQ(media.title.get(), "Meanwhile");
  EXPECT_EQ(media.artwork.get()->pixels->front(), 0xffff0000) << "the real cover is back";
}

TEST(AccentColor, IsABrightTintOfTheAverage) {
  const auto cover = [](std::vector<uint32_t> pixels) {
    return Image{
        static_cast<int>(pixels.size()), 1, std::make_shared<std::vector<uint32_t>>(std::move(pixels))};
  };
  const struct {
    const char* what;
    Image image;
    Color expected;
  } cases[] = {
      {"nothing", {}, white()},
      {"black", cover({0xff000000}), hsb(0, 0, 0.95)},
      {"red", cover({0xffff0000}), hsb(0, 0.85, 0.95)},
      {"dark blue", cover({0xff000033}), hsb(2.0 / 3, 0.85, 0.95)},
      {"pale green", cover({0xffccffcc}), hsb(1.0 / 3, 0.24, 0.95)},
      {"magenta, past blue", cover({0xffff00cc}), hsb(1 - 0.8 / 6, 0.85, 0.95)},
      {"red and green make yellow", cover({0xffff0000, 0xff00ff00}), hsb(1.0 / 6, 0.85, 0.95)},
  };
  for (const auto& c : cases) {
    const Color accent = accentOf(c.image);
    EXPECT_NEAR(accent.red, c.expected.red, 1e-9) << c.what;
    EXPECT_NEAR(accent.green, c.expected.green, 1e-9) << c.what;
    EXPECT_NEAR(accent.blue, c.expected.blue, 1e-9) << c.what;
  }
}

}  // namespace
}  // namespace tarnwick
