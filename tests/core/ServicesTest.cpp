#include <gtest/gtest.h>

#include "core/NotchController.h"
#include "support/MemoryDesktop.h"
#include "support/MemoryPanel.h"

namespace tarnwick {
namespace {

/// Every service has begun to work, by itself, when the notch is there.
TEST(Services, AreAllStarted) {
  for (const bool calendarEnabled : {true, false}) {
    MemoryDesktop desktop;
    desktop.folders.root.write("modules/MediaBridge.so", "");
    desktop.defaults.set("calendarEnabled", calendarEnabled);
    NotchController controller(
        desktop.ports, [&](NotchModel&) { return std::make_unique<MemoryPanel>(desktop.pointer); });
    NotchModel& model = controller.model();
    desktop.scheduler.advance(4);
    EXPECT_EQ(desktop.processes.launches.size(), 1u) << "what follows the players";
    EXPECT_EQ(desktop.calendars.isAsked(), calendarEnabled);
    model.settings.calendarEnabled = true;
    desktop.calendars.setAccess(true);
    EXPECT_TRUE(model.calendar.authorized);
    model.settings.calendarEnabled = false;
    EXPECT_FALSE(model.calendar.authorized) << "settings work at once";

    desktop.audioDevices.plug({{.id = 3, .name = "Speakers", .hasOutput = true}}, 3, 0);
    EXPECT_EQ(model.audio.outputs->size(), 1u);
    desktop.audioDevices.turn(3, AudioScope::output, {0.5, false});
    EXPECT_EQ(*model.transient, Transient::hud(HUDKind::volume, 0.5));
    for (const bool plugged : {false, true}) {
      desktop.powerSources.set({{{.isInternalBattery = true, .currentCapacity = 50, .onACPower = plugged}}});
    }
    EXPECT_EQ(*model.transient, Transient::power(true, 50));
    desktop.bluetooth.tell(BluetoothEvent::connected, {.id = "buds", .name = "Buds", .isAudio = true});
    EXPECT_EQ(*model.transient, Transient::device("Buds", "headphones", {}, true));
  }
}

}  // namespace
}  // namespace tarnwick
