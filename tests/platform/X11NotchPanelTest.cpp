#include "linux/x11/X11NotchPanel.h"

#include <gtest/gtest.h>
#include <xcb/shape.h>
#include <xcb/xinput.h>

#include <QCoreApplication>
#include <QLineEdit>
#include <QPainter>
#include <QPointingDevice>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>

#include "platform/TestDesktop.h"

using namespace tarnwick;
namespace {

constexpr uint32_t surfaceColor = 0x123456, otherColor = 0x00ff00;

TestDesktop& desktop() { return TestDesktop::shared(); }

/// Fills the surface, a rectangle at the top centre, and counts the presses on it.
class Content : public QWidget {
 public:
  QRect surface{370, 0, 200, 32};
  Rect floating;
  int presses = 0, scrolls = 0;
  QLineEdit editor{this};

  Content() { resize(940, 380); }

  PanelContent::Surface presentedSurface() const {
    PanelContent::Surface presented{
        {double(surface.x()), double(surface.y()), double(surface.width()), double(surface.height())}, {}};
    presented.outline.addRect(surface);
    presented.floating = floating;
    return presented;
  }

 protected:
  void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(surface, QColor::fromRgb(surfaceColor)); }
  void mousePressEvent(QMouseEvent*) override { ++presses; }
  void wheelEvent(QWheelEvent*) override { ++scrolls; }
};

class X11NotchPanelTest : public testing::Test {
 protected:
  X11NotchPanelTest() {
    content.editor.hide();
    desktop().hands.movePointer(10, 790);
    panel.moveTo(desktop().screens().all()[0]);
    panel.orderFrontRegardless();
  }

  xcb_window_t window() const { return static_cast<xcb_window_t>(content.window()->winId()); }
  auto shows(int x, int y, uint32_t color) const {
    return [=] { return desktop().pixel(x, y) == color; };
  }
  /// Places in the stack of windows; higher is nearer to the user.
  static auto height(xcb_window_t window) {
    const auto stack = desktop().stacking();
    return std::find(stack.begin(), stack.end(), desktop().topLevel(window)) - stack.begin();
  }
  bool isAbove(const std::string& title) const {
    return height(window()) > height(desktop().awaitWindow(title));
  }

  Content content;
  X11NotchPanel panel{desktop().connection(), desktop().screens(), desktop().scheduler,
      {content, [this] { return content.presentedSurface(); }}};
};

}  // namespace

TEST_F(X11NotchPanelTest, WithoutACompositorTheWindowIsTheSurface) {
  const auto other = desktop().startWindow("other", {0, 0, 1000, 800}, {"fullscreen"});
  const auto surfaceBecomes = [&](QRect surface) {
    content.surface = surface;
    content.update();
    panel.surfaceChanged();
    return waitUntil(shows(30 + surface.left() + 1, surface.bottom() - 1, surfaceColor)) &&
           waitUntil(shows(30 + surface.left() + 1, surface.bottom() + 2, otherColor)) &&
           waitUntil(shows(30 + surface.left() - 2, surface.bottom() - 1, otherColor));
  };
  const auto boundingShape = [&] { return desktop().shapeBounds(window(), XCB_SHAPE_SK_BOUNDING); };
  EXPECT_TRUE(surfaceBecomes({220, 0, 500, 200}));
  EXPECT_TRUE(surfaceBecomes({370, 0, 200, 32}));
  EXPECT_EQ(boundingShape(), (Rect{370, 0, 200, 32}));
  {
    const auto compositor = desktop().startCompositor();
    EXPECT_TRUE(waitUntil([&] { return !boundingShape(); }));
    EXPECT_TRUE(surfaceBecomes({220, 0, 500, 200})) << "blended";
  }
  EXPECT_TRUE(waitUntil([&] {
    return boundingShape() == Rect{220, 0, 500, 200};
  })) << "the compositor has gone";
}

TEST_F(X11NotchPanelTest, FollowsTheScreenInItsOwnCoordinates) {
  int activities = 0;
  const auto observer = panel.pointer().observe([&] { ++activities; });
  panel.pointer().setWantsActivity(true);
  panel.setPointerArea(Rect{370, -5, 200, 37});
  desktop().hands.warpPointer(500, 10);
  EXPECT_TRUE(waitUntil([&] { return activities > 0; })) << "warped over the edge of the window";
  EXPECT_TRUE(waitUntil([&] { return panel.pointer().position() == Point{470, 10}; }));
  activities = 0;
  desktop().hands.warpPointer(500, 700);
  EXPECT_TRUE(waitUntil([&] { return activities > 0; }));
  const auto takesPointerIn = [&](const Rect& pixels) {
    return waitUntil([&] { return desktop().shapeBounds(window(), XCB_SHAPE_SK_INPUT) == pixels; });
  };
  EXPECT_TRUE(takesPointerIn({370, 0, 200, 32}));
  content.floating = {600, 40, 50, 60};
  panel.surfaceChanged();
  EXPECT_TRUE(takesPointerIn({370, 0, 280, 100})) << "these are their bounds";
  panel.setPointerArea(std::nullopt);
  EXPECT_TRUE(takesPointerIn({}));

  // On the right monitor a point is two pixels wide.
  panel.moveTo(desktop().screens().all()[1]);
  int resizes = 0;
  panel.onResize = [&] { ++resizes; };
  content.resize(400, 300);
  EXPECT_EQ(resizes, 1);
  content.surface = {100, 0, 200, 32};
  content.update();
  panel.surfaceChanged();
  panel.setPointerArea(Rect{100, 0, 200, 32});
  EXPECT_TRUE(waitUntil(shows(1205, 210, surfaceColor)));
  EXPECT_TRUE(waitUntil(shows(1595, 260, surfaceColor)));
  EXPECT_TRUE(takesPointerIn({200, 0, 400, 64}));
  desktop().hands.click(1590, 255);
  EXPECT_TRUE(waitUntil([&] { return content.presses == 1; }));
  EXPECT_EQ(panel.pointer().position(), (Point{295, 27.5}));
}

TEST_F(X11NotchPanelTest, StaysAboveManagedWindowsButNotAboveOthers) {
  const auto full = desktop().startWindow("full", {0, 0, 1000, 800}, {"fullscreen"});
  EXPECT_TRUE(waitUntil([&] { return isAbove("full"); }));
  const auto menu = desktop().startUnmanaged("menu", {400, 0, 200, 100});
  ASSERT_FALSE(isAbove("menu"));

  // A window manager may put its windows above anything.
  const xcb_window_t frame = desktop().topLevel(desktop().awaitWindow("full"));
  const uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(desktop().connection(), frame, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  const xcb_window_t menuWindow = desktop().awaitWindow("menu");
  xcb_configure_window(desktop().connection(), menuWindow, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  xcb_flush(desktop().connection());
  ASSERT_TRUE(waitUntil([&] { return height(menuWindow) > height(frame); }));
  EXPECT_TRUE(waitUntil([&] { return isAbove("full"); }));
  EXPECT_FALSE(isAbove("menu"));
}

TEST_F(X11NotchPanelTest, BorrowsTheKeyboardFocus) {
  const auto other = desktop().startWindow("other", {0, 400, 300, 300});
  auto dying = desktop().startWindow("dying", {400, 400, 300, 300});
  const xcb_window_t otherWindow = desktop().awaitWindow("other"),
                     dyingWindow = desktop().awaitWindow("dying");
  // The window manager gives new windows the focus, which it must have done.
  ASSERT_TRUE(waitUntil([=] {
    const xcb_window_t focused = desktop().focusedWindow();
    return desktop().isManaged(otherWindow) && desktop().isManaged(dyingWindow) &&
           (focused == otherWindow || focused == dyingWindow);
  }));
  const auto focus = [=](xcb_window_t target) {
    // Now and then the window manager lets a click pass; one that it handles late takes the focus away again.
    constexpr int pollsPerClick = 200, pollsAtRest = 30;
    return waitUntil([=, polls = 0, resting = 0]() mutable {
      if (polls++ % pollsPerClick == 0) desktop().hands.click(target == otherWindow ? 150 : 550, 550);
      resting = desktop().focusedWindow() == target ? resting + 1 : 0;
      return resting == pollsAtRest;
    });
  };
  content.editor.show();

  const auto isKey = [&] { return desktop().focusedWindow() == window(); };
  const auto isBackAt = [&](xcb_window_t target) {
    return waitUntil(
        [&] { return desktop().focusedWindow() == target && !content.window()->isActiveWindow(); });
  };

  ASSERT_TRUE(focus(dyingWindow));
  ASSERT_TRUE(focus(otherWindow));
  panel.becomeKey();
  panel.becomeKey();
  content.editor.setFocus();
  EXPECT_TRUE(waitUntil([&] { return isKey() && content.editor.hasFocus(); }));
  panel.resignKey();
  EXPECT_TRUE(isBackAt(otherWindow)) << "although it was asked for twice";
  EXPECT_FALSE(content.editor.hasFocus());
  panel.becomeKey();
  panel.resignKey();
  EXPECT_TRUE(isBackAt(otherWindow)) << "although it was given back before the toolkit knew of it";
  panel.becomeKey();
  ASSERT_TRUE(focus(dyingWindow));
  panel.resignKey();
  EXPECT_TRUE(isBackAt(dyingWindow)) << "the user has gone there in the meantime";

  panel.becomeKey();
  EXPECT_TRUE(isKey());
  dying.reset();
  ASSERT_TRUE(waitUntil([=] { return !desktop().isManaged(dyingWindow); }));
  panel.resignKey();
  EXPECT_TRUE(isBackAt(otherWindow)) << "the window that had it is gone: the next one gets it";
}

namespace {

/// A property of the test extension's pointer, as a touchpad's driver would set it.
class DriverSetting {
 public:
  DriverSetting(uint16_t device, const char* name, std::vector<uint8_t> bytes, uint8_t format = 8)
      : connection_(desktop().connection()), device_(device), property_(connection_.atom(name)) {
    const auto items = static_cast<uint32_t>(bytes.size() / (format / 8));
    // The request is padded to whole words from what follows the last item.
    bytes.resize((bytes.size() + 3) / 4 * 4);
    xcb_input_xi_change_property(
        connection_, device, XCB_PROP_MODE_REPLACE, format, property_, XCB_ATOM_INTEGER, items, bytes.data());
    xcb_flush(connection_);
  }
  ~DriverSetting() {
    xcb_input_xi_delete_property(connection_, device_, property_);
    xcb_flush(connection_);
  }

 private:
  X11Connection& connection_;
  const uint16_t device_;
  const xcb_atom_t property_;
};

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

TEST_F(X11NotchPanelTest, HandsScrollingToTheControllerAsTheDriverMeansIt) {
  const uint16_t device = testPointer(desktop().connection());
  ASSERT_NE(device, 0);
  const QPointingDevice touchpad("touchpad", device, QInputDevice::DeviceType::TouchPad,
      QPointingDevice::PointerType::Finger, QInputDevice::Capability::Scroll, 1, 3);
  bool consumes = true;
  const auto scroll = [&](QPoint eighthsOfDegrees, QPoint pixels) {
    ScrollEvent seen;
    panel.onScroll = [&](const ScrollEvent& event) {
      if (event.phase != ScrollEvent::Phase::ended) seen = event;
      return consumes;
    };
    QWheelEvent event({470, 10}, {500, 10}, pixels, eighthsOfDegrees, Qt::NoButton, Qt::NoModifier,
        Qt::NoScrollPhase, false, Qt::MouseEventNotSynthesized, &touchpad);
    QCoreApplication::sendEvent(content.window()->windowHandle(), &event);
    return seen;
  };
  const auto isNatural = [&](bool natural) {
    return waitUntil([&] { return scroll({60, -120}, {7, -14}).directionInverted == natural; });
  };
  EXPECT_TRUE(isNatural(false)) << "a driver that tells nothing";
  EXPECT_TRUE(scroll({60, -120}, {7, -14}).precise);
  const ScrollEvent wheel = scroll({0, -120}, {});
  EXPECT_FALSE(wheel.precise);
  EXPECT_LT(wheel.deltaY, 0);
  EXPECT_EQ(content.scrolls, 0);
  consumes = false;
  scroll({0, -120}, {});
  EXPECT_EQ(content.scrolls, 1) << "what is not consumed scrolls the content";
  {
    const DriverSetting method(device, "libinput Scroll Method Enabled", {1, 0, 0});
    const DriverSetting distance(device, "libinput Scrolling Pixel Distance", {30, 0, 0, 0}, 32);
    const DriverSetting natural(device, "libinput Natural Scrolling Enabled", {1});
    ASSERT_TRUE(isNatural(true));
    const ScrollEvent event = scroll({60, -120}, {7, -14});
    EXPECT_TRUE(event.precise);
    EXPECT_EQ(event.deltaX, 15);
    EXPECT_EQ(event.deltaY, -30);
  }
  const DriverSetting method(device, "libinput Scroll Method Enabled", {0, 0, 0});
  const DriverSetting natural(device, "libinput Natural Scrolling Enabled", {0});
  EXPECT_TRUE(waitUntil([&] {
    return !scroll({60, -120}, {7, -14}).precise;
  })) << "a mouse has nothing but its wheel";
}
