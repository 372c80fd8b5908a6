#include "showcase/Snapshot.h"

#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>

#include "support/TemporaryFolder.h"

namespace tarnwick {
namespace {

constexpr std::array names{"0-peek", "1-compact-claude", "2-hud-volume", "2b-hud-loud", "2c-hud-mid",
    "3-power", "4-device", "5-banner", "6-home", "6b-compact-media", "6c-audio", "7-claude", "8-tray",
    "9-notes"};

TEST(Snapshot, WritesAPictureOfEachScene) {
  const TemporaryFolder folder;
  const std::string place = folder.path() + "/new/folder";
  int plugged = 0;
  ASSERT_FALSE(Snapshot::run(place, [&](MemoryAudioDevices&) { ++plugged; }));
  EXPECT_EQ(plugged, 1);
  std::map<std::string, const char*> seen;
  for (const char* name : names) {
    const std::string file = place + "/" + name + ".png";
    const QImage picture(QString::fromStdString(file), "PNG");
    ASSERT_EQ(picture.size(), QSize(1080, 345)) << name;
    EXPECT_EQ(picture.pixelColor(0, 344).red(), 217) << name;
    EXPECT_LT(picture.pixelColor(540, 3).red(), 40) << name << " has a notch";
    const auto [same, isNew] = seen.emplace(contentsOf(file), name);
    EXPECT_TRUE(isNew) << name << " is " << same->second;
  }
  const std::filesystem::directory_iterator all(place);
  EXPECT_EQ(std::distance(begin(all), end(all)), std::ssize(names)) << "nothing else is left there";
}

TEST(Snapshot, TellsWhatCannotBeWritten) {
  const TemporaryFolder folder;
  const auto nothing = [](MemoryAudioDevices&) {};
  EXPECT_EQ(Snapshot::run(folder.write("file", ""), nothing), std::errc::not_a_directory);
  std::filesystem::create_directories(folder.path() + "/5-banner.png");
  EXPECT_EQ(Snapshot::run(folder.path(), nothing), std::errc::is_a_directory);
  EXPECT_TRUE(std::filesystem::exists(folder.path() + "/9-notes.png")) << "the other scenes are there";
}

}  // namespace
}  // namespace tarnwick
