#include "showcase/Showcase.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>

#include "base/L10n.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ShowcaseTest : public testing::Test {
 protected:
  ~ShowcaseTest() override { L10n::forced = std::nullopt; }

  void tell(const std::string& command, const std::string& argument = "") {
    showcase.handle(command, argument);
  }
  void pass(double seconds) { desktop.scheduler.advance(seconds); }
  std::string notesOnDisk() const { return contentsOf(desktop.folders.data() + "/Tarnwick/notes.txt"); }
  auto trayOnDisk() const { return desktop.defaults.strings("trayItems").value_or(std::vector<FilePath>{}); }
  const std::string& firstInput() const { return model.audio.inputs->front().name; }

  MemoryDesktop desktop;
  NotchModel model{desktop.ports};
  Showcase showcase{model, desktop.scheduler, desktop.folders};
};

TEST_F(ShowcaseTest, GivesEverythingBackAsItIsByThen) {
  const FilePath mine = desktop.folders.root.write("mine.txt", "");
  desktop.audioDevices.plug({{1, "Mine", AudioTransport::builtIn, true, false}}, 1, 0);
  model.audio.start();
  model.tray.add({mine});
  model.notes.setText("mine");
  pass(0.1);
  // Twice: the second one starts the demonstration anew.
  for (const char* language : {"fr", "en"}) {
    tell("begin", language);
    EXPECT_EQ(notesOnDisk(), "mine") << "what was typed last is not to be lost";
    EXPECT_THAT(*model.tray.items, IsEmpty());
    EXPECT_EQ(model.notes.text(), "");
    EXPECT_EQ(model.media.title.get(), "Golden Hour Drive");
    EXPECT_FALSE(model.media.isPlaying());
    EXPECT_EQ(firstInput(), L10n::isFrench() ? "Micro MacBook Pro" : "MacBook Pro Microphone");
    EXPECT_EQ(model.calendar.events->size(), 2u);
    tell("trayadd", "Draft.pdf");
    tell("type", "demonstrated");
    tell("peek");
    tell("drag", "target");
    pass(2);
    EXPECT_EQ(model.notes.text(), "demonstrated");
    EXPECT_EQ(model.tray.items->size(), 1u);
    model.flush();
    EXPECT_EQ(notesOnDisk(), "mine");
    EXPECT_THAT(trayOnDisk(), ElementsAre(mine));
  }
  desktop.audioDevices.plug({{2, "Plugged meanwhile", AudioTransport::usb, true, false}}, 2, 0);
  tell("type", "and on");
  tell("end");
  pass(2);
  EXPECT_THAT(*model.tray.items, ElementsAre(mine));
  EXPECT_EQ(model.notes.text(), "mine");
  EXPECT_EQ(model.audio.outputs->front().name, "Plugged meanwhile");
  EXPECT_EQ(model.media.title.get(), "");
  EXPECT_THAT(*model.calendar.events, IsEmpty());
  EXPECT_FALSE(model.showcase || model.isExpanded || model.isHovering || model.isDraggingFiles);
  EXPECT_FALSE(*L10n::forced);
  model.notes.setText("mine again");
  model.tray.remove(mine);
  pass(1);
  EXPECT_EQ(notesOnDisk(), "mine again") << "writing goes on";
  EXPECT_THAT(trayOnDisk(), IsEmpty());
}

TEST_F(ShowcaseTest, ShowsTheIndicatorsThatItIsAskedFor) {
  const struct {
    const char *command, *argument;
    Transient shown;
    double seconds;
  } cases[] = {
      {"hud", "0.25", Transient::hud(HUDKind::volume, 0.25), 1.6},
      {"hud", "", Transient::hud(HUDKind::volume, 0.5), 1.6},
      {"hud", "loud", Transient::hud(HUDKind::volume, 0.5), 1.6},
      {"hud", "nan", Transient::hud(HUDKind::volume, 0.5), 1.6},
      {"hud", "1e308", Transient::hud(HUDKind::volume, 1), 1.6},
      {"mute", "", Transient::hud(HUDKind::mute, 0), 1.6},
      {"brightness", "-3", Transient::hud(HUDKind::brightness, 0), 1.6},
      {"brightness", "0.4x", Transient::hud(HUDKind::brightness, 0.6), 1.6},
      {"power", "unplugged", Transient::power(false, 76), 2.4},
      {"power", "anything", Transient::power(true, 76), 2.4},
      {"lowpower", "", Transient::lowPowerMode(true), 2.4},
      {"lowpower", "off", Transient::lowPowerMode(false), 2.4},
      {"device", "", Transient::device("AirPods Pro", "airpodspro", 84, true), 2.8},
      {"device", "Two\nlines", Transient::device("Two lines", "airpodspro", 84, true), 2.8},
  };
  for (const auto& [command, argument, shown, seconds] : cases) {
    tell(command, argument);
    EXPECT_FALSE(*model.transient) << "before the demonstration";
  }
  tell("begin");
  for (const auto& [command, argument, shown, seconds] : cases) {
    tell(command, argument);
    EXPECT_EQ(*model.transient, shown) << command << ' ' << argument;
    pass(seconds - 0.01);
    EXPECT_TRUE(*model.transient) << command;
    pass(0.02);
    EXPECT_FALSE(*model.transient) << command;
  }
  tell("lang", "fr");
  tell("lowbattery");
  ASSERT_TRUE(*model.banner);
  EXPECT_EQ(model.banner.get()->subtitle, "10 % restants");
  tell("dismiss");
  EXPECT_FALSE(*model.banner);
}

TEST_F(ShowcaseTest, DrivesTheNotch) {
  tell("begin", "fr");
  tell("expand", "tray");
  EXPECT_EQ(model.tab, Tab::tray);
  tell("expand", "nowhere");
  EXPECT_TRUE(model.isExpanded && model.tab == Tab::tray) << "the current tab";
  tell("tab", "notes");
  tell("tab", "Audio");
  EXPECT_EQ(model.tab, Tab::notes);
  tell("lang", "");
  EXPECT_EQ(firstInput(), "MacBook Pro Microphone") << "no language is English";
  tell("collapse");
  EXPECT_FALSE(model.isExpanded);
  tell("peek");
  EXPECT_TRUE(model.isHovering);
  tell("peek", "off");
  EXPECT_FALSE(model.isHovering);

  const struct {
    const char* argument;
    bool dragging, targeted;
  } drags[] = {{"", true, false}, {"target", true, true}, {"on", true, false}, {"off", false, false}};
  for (const auto& [argument, dragging, targeted] : drags) {
    tell("drag", argument);
    EXPECT_TRUE(model.isDraggingFiles == dragging && model.isDropTargeted == targeted) << argument;
  }
  for (const auto& [index, id] :
      {std::pair{"2", 9003u}, {"x", 9001u}, {"1", 9002u}, {"-1", 9002u}, {"3", 9002u}}) {
    tell("output", index);
    EXPECT_EQ(model.audio.outputID, id) << index;
  }
  tell("track", "1");
  tell("pause");
  EXPECT_EQ(model.media.title.get(), "Midnight Ferris Wheel");
  EXPECT_FALSE(model.media.playing);
  tell("play");
  tell("track", "99999999999999999999");
  EXPECT_EQ(model.media.title.get(), "Golden Hour Drive");
  EXPECT_TRUE(model.media.playing);
  model.claude.handle({{"hook_event_name", "UserPromptSubmit"}, {"session_id", "showcase"}});
  tell("clearclaude");
  EXPECT_THAT(*model.claude.sessions, IsEmpty());
}

TEST_F(ShowcaseTest, TypesACharacterATick) {
  tell("begin");
  tell("type", "Twenty letters: été 👩‍👧!");
  pass(0.045 * 3 + 0.001);
  EXPECT_EQ(model.notes.text(), "Twe");
  pass(0.045 * 18);
  EXPECT_EQ(model.notes.text(), "Twenty letters: été 👩‍👧") << "a character that a user sees is one";
  tell("type", "?");
  pass(1);
  EXPECT_EQ(model.notes.text(), "Twenty letters: été 👩‍👧?")
      << "the rest of the first text is not typed any more";
}

TEST_F(ShowcaseTest, MakesTheFilesThatItShows) {
  const std::string folder = desktop.folders.caches() + "/Tarnwick/showcase/";
  const struct {
    std::string argument, file;
    bool isPicture;
  } cases[] = {
      {"", "Mockup.png", true},
      {"Draft.pdf", "Draft.pdf", false},
      {"SHOT.PnG", "SHOT.PnG", true},
      {"png", "png", false},
      {"../../up.txt", "up.txt", false},
      {"..", "Mockup.png", true},
      {"/", "Mockup.png", true},
      {"a\nb", "a b", false},
      {std::string(5000, 'x'), std::string(60, 'x'), false},
  };
  tell("begin");
  for (const auto& [argument, file, isPicture] : cases) {
    tell("drag", "target");
    tell("trayadd", argument);
    ASSERT_TRUE(std::ranges::count(*model.tray.items, folder + file)) << argument;
    EXPECT_TRUE(model.isExpanded && model.tab == Tab::tray && !model.isDraggingFiles);
    const QImage picture(QString::fromStdString(folder + file));
    EXPECT_EQ(picture.size(), isPicture ? QSize(512, 512) : QSize(0, 0)) << argument;
    if (!isPicture) {
      EXPECT_EQ(contentsOf(folder + file), "Tarnwick demo file\n");
    }
  }
  desktop.folders.root.write("caches/Tarnwick/showcase/there.png", "kept");
  tell("trayadd", "there.png");
  EXPECT_EQ(contentsOf(folder + "there.png"), "kept");
  for (int i = 0; i < 300; ++i) tell("trayadd", std::to_string(i));
  EXPECT_EQ(model.tray.items->size(), 100u) << "no flood fills the shelf";
}

}  // namespace
}  // namespace tarnwick
