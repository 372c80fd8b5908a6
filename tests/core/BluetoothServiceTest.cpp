#include "services/BluetoothService.h"

#include <gtest/gtest.h>

#include "core/NotchModel.h"
#include "support/ForcedLanguage.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using Event = BluetoothEvent;

class BluetoothServiceTest : public testing::Test {
 protected:
  BluetoothServiceTest() { model.bluetooth.start(model.settings); }

  void pass(double seconds) { desktop.scheduler.advance(seconds); }
  void tell(Event event, const BluetoothDevice& device) { desktop.bluetooth.tell(event, device); }
  /// The indicator on show after that event, well after the start.
  std::optional<Transient> shownAfter(Event event, const BluetoothDevice& device) {
    pass(10);
    tell(event, device);
    return model.transient;
  }
  static BluetoothDevice named(const std::string& name, bool isAudio = false, std::vector<int> levels = {}) {
    return {"id " + name, name, isAudio, std::move(levels)};
  }

  const ForcedLanguage english{"en"};
  MemoryDesktop desktop;
  NotchModel model{desktop.ports};
};

TEST_F(BluetoothServiceTest, IsSilentAboutDevicesOfTheStart) {
  tell(Event::connected, named("Buds"));
  pass(3);
  tell(Event::connected, named("Mouse"));
  EXPECT_EQ(*model.transient, std::nullopt);
  pass(0.01);
  tell(Event::connected, named("Keyboard"));
  EXPECT_EQ(*model.transient, Transient::device("Keyboard", "keyboard", {}, true));
}

TEST_F(BluetoothServiceTest, TellsOfADisconnectionAtAnyTime) {
  pass(2);
  tell(Event::disconnected, named("Buds", true, {50}));
  EXPECT_EQ(*model.transient, Transient::device("Buds", "headphones", {}, false));
  pass(2.9);
  EXPECT_NE(*model.transient, std::nullopt);
  pass(0.2);
  EXPECT_EQ(*model.transient, std::nullopt);
}

TEST_F(BluetoothServiceTest, ChoosesNameAndSymbol) {
  const struct {
    const char *name, *symbol;
    bool isAudio = false;
  } cases[] = {
      {"Ada’s AirPods Max", "airpodsmax"},
      {"AIRPODS PRO", "airpodspro", true},
      {"airpods", "airpods"},
      {"Beats keyboard", "beats.headphones"},
      {"Magic Keyboard with Trackpad", "keyboard"},
      {"Clavier", "keyboard"},
      {"Souris sans fil", "magicmouse"},
      {"Magic Mouse", "magicmouse"},
      {"Magic Trackpad", "rectangle.and.hand.point.up.left"},
      {"Kitchen", "headphones", true},
      {"Game controller", "dot.radiowaves.left.and.right", false},
  };
  for (const auto& [name, symbol, isAudio] : cases) {
    EXPECT_EQ(shownAfter(Event::connected, named(name, isAudio)), Transient::device(name, symbol, {}, true));
  }
  EXPECT_EQ(shownAfter(Event::connected, named("")),
      Transient::device("Bluetooth device", "dot.radiowaves.left.and.right", {}, true));
  const ForcedLanguage french("fr");
  EXPECT_EQ(shownAfter(Event::connected, named("", true)),
      Transient::device("Appareil Bluetooth", "headphones", {}, true));
}

TEST_F(BluetoothServiceTest, ShowsTheEmptiestBattery) {
  const struct {
    std::vector<int> levels;
    std::optional<int> shown;
  } cases[] = {
      {{80, 35}, 35}, {{0, 60}, 60}, {{0}, {}}, {{-1}, {}}, {{1}, 1}, {{100, 100}, 100}, {{255}, {}}};
  for (const auto& [levels, shown] : cases) {
    EXPECT_EQ(shownAfter(Event::connected, named("Buds", true, levels)),
        Transient::device("Buds", "headphones", shown, true));
  }
}

TEST_F(BluetoothServiceTest, UpdatesTheIndicatorWhenTheLevelComesLater) {
  shownAfter(Event::connected, named("Buds", true));
  pass(2);
  tell(Event::batteryChanged, named("Mouse", false, {10}));
  EXPECT_EQ(*model.transient, Transient::device("Buds", "headphones", {}, true)) << "another device's level";
  tell(Event::batteryChanged, named("Buds", true, {70}));
  EXPECT_EQ(*model.transient, Transient::device("Buds", "headphones", 70, true));
  pass(2.9);
  EXPECT_NE(*model.transient, std::nullopt) << "its time starts anew";
  pass(1);
  tell(Event::batteryChanged, named("Buds", true, {69}));
  EXPECT_EQ(*model.transient, std::nullopt) << "a level alone is no news";

  shownAfter(Event::connected, named("Buds", true));
  model.show(Transient::lowPowerMode(true), 3);
  tell(Event::batteryChanged, named("Buds", true, {70}));
  EXPECT_EQ(*model.transient, Transient::lowPowerMode(true)) << "a level never takes another's place";
}

TEST_F(BluetoothServiceTest, ShowsALevelThatComesAfterTheIndicatorHasGone) {
  EXPECT_NE(shownAfter(Event::connected, named("Buds", true)), std::nullopt);
  pass(8);
  ASSERT_EQ(*model.transient, std::nullopt);
  tell(Event::batteryChanged, named("Buds", true, {0}));
  EXPECT_EQ(*model.transient, std::nullopt) << "still unknown";
  tell(Event::batteryChanged, named("Buds", true, {70}));
  EXPECT_EQ(*model.transient, Transient::device("Buds", "headphones", 70, true));
  pass(3.1);
  tell(Event::batteryChanged, named("Buds", true, {69}));
  EXPECT_EQ(*model.transient, std::nullopt) << "told once";

  shownAfter(Event::connected, named("Mouse"));
  EXPECT_EQ(
      shownAfter(Event::disconnected, named("Mouse")), Transient::device("Mouse", "magicmouse", {}, false));
  EXPECT_EQ(shownAfter(Event::batteryChanged, named("Mouse", false, {50})), std::nullopt) << "it has gone";
  shownAfter(Event::connected, named("Mouse"));
  pass(21);
  EXPECT_EQ(shownAfter(Event::batteryChanged, named("Mouse", false, {50})), std::nullopt) << "too late";
}

TEST_F(BluetoothServiceTest, ALevelIsNoNewsOfADeviceThatWasNotShown) {
  model.isExpanded = true;
  shownAfter(Event::connected, named("Buds", true));
  model.isExpanded = false;
  EXPECT_EQ(shownAfter(Event::batteryChanged, named("Buds", true, {70})), std::nullopt);
}

TEST_F(BluetoothServiceTest, ShowsNothingWhenSwitchedOff) {
  model.settings.bluetoothAlerts = false;
  for (const Event event : {Event::connected, Event::batteryChanged, Event::disconnected}) {
    EXPECT_EQ(shownAfter(event, named("Buds", true, {70})), std::nullopt);
  }
}

}  // namespace
}  // namespace tarnwick
