#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xinput.h>

#include "linux/x11/ScrollDevices.h"
#include "linux/x11/ScrollGesture.h"
#include "platform/TestDesktop.h"
#include "support/VirtualScheduler.h"

using namespace tarnwick;
using testing::ElementsAre;
using Phase = ScrollEvent::Phase;

TEST(ScrollGesture, APauseEndsItAndAWheelMakesNone) {
  VirtualScheduler scheduler;
  std::vector<Phase> phases;
  ScrollGesture gesture(scheduler, [&](const ScrollEvent& event) {
    phases.push_back(event.phase);
    return true;
  });
  const ScrollEvent step{.precise = true, .deltaY = 3};
  EXPECT_TRUE(gesture.step(step));
  for (int i = 0; i < 3; ++i) {
    scheduler.advance(0.15);
    gesture.step(step);
  }
  EXPECT_THAT(phases, ElementsAre(Phase::began, Phase::changed, Phase::changed, Phase::changed));
  scheduler.advance(0.19);
  EXPECT_EQ(phases.size(), 4u);
  scheduler.advance(0.02);
  EXPECT_EQ(phases.back(), Phase::ended);
  gesture.step(step);
  scheduler.advance(5);
  gesture.step({.precise = false, .deltaY = 15});
  scheduler.advance(5);
  EXPECT_THAT(phases, ElementsAre(Phase::began, Phase::changed, Phase::changed, Phase::changed, Phase::ended,
                                  Phase::began, Phase::ended, Phase::none));
}

namespace {

/// Sets a property of the test extension's pointer as a touchpad's driver would.
void setDeviceProperty(X11Connection& connection, uint16_t device, const char* name,
                       std::vector<uint8_t> bytes, uint8_t format) {
  const auto items = static_cast<uint32_t>(bytes.size() / (format / 8));
  // The request is padded to whole words from what follows the last item.
  bytes.resize((bytes.size() + 3) / 4 * 4);
  xcb_input_xi_change_property(connection, device, XCB_PROP_MODE_REPLACE, format, connection.atom(name),
                               XCB_ATOM_INTEGER, items, bytes.data());
  xcb_flush(connection);
}

uint16_t testPointer(X11Connection& connection) {
  const auto reply =
      owned(xcb_input_xi_query_device_reply(connection, xcb_input_xi_query_device(connection, 0), nullptr));
  for (auto it = xcb_input_xi_query_device_infos_iterator(reply.get()); it.rem;
       xcb_input_xi_device_info_next(&it)) {
    if (it.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_POINTER) return it.data->deviceid;
  }
  return 0;
}

}  // namespace

TEST(ScrollDevices, ReadTheDriversSettingsAndNoticeChanges) {
  X11Connection& connection = TestDesktop::shared().connection();
  const uint16_t device = testPointer(connection);
  ASSERT_NE(device, 0);
  ScrollDevices devices(connection);
  EXPECT_FALSE(devices.traits(device).natural) << "a driver that tells nothing";
  EXPECT_TRUE(devices.traits(device).smooth);

  setDeviceProperty(connection, device, "libinput Scroll Method Enabled", {1, 0, 0}, 8);
  setDeviceProperty(connection, device, "libinput Scrolling Pixel Distance", {30, 0, 0, 0}, 32);
  setDeviceProperty(connection, device, "libinput Natural Scrolling Enabled", {1}, 8);
  EXPECT_TRUE(waitUntil([&] { return devices.traits(device).natural; }));
  EXPECT_TRUE(devices.traits(device).smooth);
  EXPECT_EQ(devices.traits(device).pointsPerClick, 30);

  setDeviceProperty(connection, device, "libinput Scroll Method Enabled", {0, 0, 0}, 8);
  EXPECT_TRUE(waitUntil([&] { return !devices.traits(device).smooth; }))
      << "a mouse has nothing but its wheel";
  for (const char* name : {"libinput Scroll Method Enabled", "libinput Scrolling Pixel Distance",
                           "libinput Natural Scrolling Enabled"}) {
    xcb_input_xi_delete_property(connection, device, connection.atom(name));
  }
  xcb_flush(connection);
}
