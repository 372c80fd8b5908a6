#include "linux/x11/X11NotchPanel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/shape.h>

#include <QEvent>
#include <QLineEdit>
#include <QPainter>
#include <algorithm>

#include "platform/TestDesktop.h"

using namespace tarnwick;
using testing::ElementsAre;

namespace {

constexpr uint32_t surfaceColor = 0x123456, otherColor = 0x00ff00;

TestDesktop& desktop() { return TestDesktop::shared(); }

/// Fills the surface, a rectangle at the top centre, and counts the presses on it.
class Content : public QWidget {
 public:
  QRect surface{370, 0, 200, 32};
  int presses = 0, scrolls = 0;
  QLineEdit editor{this};

  X11NotchPanel::Surface presentedSurface() const {
    X11NotchPanel::Surface presented{
        {double(surface.x()), double(surface.y()), double(surface.width()), double(surface.height())}, {}};
    presented.outline.addRect(surface);
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
    panel.setFrame({30, 0, 940, 380});
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
  X11NotchPanel panel{desktop().connection(), desktop().screens(), desktop().scheduler, content,
                      [this] { return content.presentedSurface(); }};
};

}  // namespace

TEST_F(X11NotchPanelTest, WithoutACompositorTheWindowIsTheSurface) {
  const auto other = desktop().startWindow("other", {0, 0, 1000, 800}, {"fullscreen"});
  EXPECT_TRUE(waitUntil(shows(500, 10, surfaceColor)));
  EXPECT_TRUE(waitUntil(shows(500, 40, otherColor))) << "below the surface";
  EXPECT_TRUE(waitUntil(shows(390, 10, otherColor))) << "beside it";

  content.surface = {220, 0, 500, 200};
  content.update();
  panel.surfaceChanged();
  EXPECT_TRUE(waitUntil(shows(500, 190, surfaceColor)));
  EXPECT_TRUE(waitUntil(shows(260, 10, surfaceColor)));
  content.surface = {370, 0, 200, 32};
  content.update();
  panel.surfaceChanged();
  EXPECT_TRUE(waitUntil(shows(500, 190, otherColor)));
}

TEST_F(X11NotchPanelTest, WithACompositorTheWindowIsTransparent) {
  const auto other = desktop().startWindow("other", {0, 0, 1000, 800}, {"fullscreen"});
  ASSERT_TRUE(desktop().shapeBounds(window(), XCB_SHAPE_SK_BOUNDING).has_value());
  {
    const auto compositor = desktop().startCompositor();
    EXPECT_TRUE(
        waitUntil([&] { return !desktop().shapeBounds(window(), XCB_SHAPE_SK_BOUNDING).has_value(); }));
    EXPECT_TRUE(waitUntil(shows(500, 10, surfaceColor)));
    EXPECT_TRUE(waitUntil(shows(500, 200, otherColor)));
    // Nothing has to follow the surface any more.
    content.surface = {220, 0, 500, 200};
    content.update();
    panel.surfaceChanged();
    EXPECT_TRUE(waitUntil(shows(500, 190, surfaceColor)));
  }
  EXPECT_TRUE(waitUntil([&] {
    return desktop().shapeBounds(window(), XCB_SHAPE_SK_BOUNDING) == Rect{220, 0, 500, 200};
  })) << "the compositor has gone";
}

TEST_F(X11NotchPanelTest, TakesClicksInItsAreaOnlyAndNeverTheFocus) {
  const auto other = desktop().startWindow("other", {0, 0, 1000, 800}, {"fullscreen"});
  const xcb_window_t otherWindow = desktop().awaitWindow("other");
  desktop().hands.click(500, 600);
  other->waitForLine("pressed");
  ASSERT_TRUE(waitUntil([&] { return desktop().focusedWindow() == otherWindow; }));
  desktop().hands.click(500, 10);
  EXPECT_EQ(other->waitForLine("pressed"), "") << "ignores the pointer at first";

  panel.setPointerArea(Rect{400, -5, 200, 40});
  desktop().hands.click(500, 10);
  EXPECT_TRUE(waitUntil([&] { return content.presses == 1; }));
  desktop().hands.click(500, 36);
  EXPECT_EQ(other->waitForLine("pressed"), "") << "below the area";
  EXPECT_EQ(desktop().focusedWindow(), otherWindow);
  EXPECT_FALSE(panel.isKey());

  panel.setPointerArea(std::nullopt);
  desktop().hands.click(500, 10);
  EXPECT_EQ(other->waitForLine("pressed"), "");
  EXPECT_EQ(content.presses, 1);
}

TEST_F(X11NotchPanelTest, TheAreaFollowsTheFrameToAnotherMonitor) {
  // In points of the right monitor, each of which is two pixels wide.
  panel.setFrame({1000, 200, 400, 300});
  content.surface = {100, 0, 200, 32};
  content.update();
  panel.surfaceChanged();
  panel.setPointerArea(Rect{1100, 200, 200, 32});
  EXPECT_TRUE(waitUntil(shows(1205, 210, surfaceColor)));
  EXPECT_TRUE(waitUntil(shows(1595, 260, surfaceColor)));
  EXPECT_EQ(desktop().shapeBounds(window(), XCB_SHAPE_SK_INPUT), (Rect{200, 0, 400, 64}));
  desktop().hands.click(1590, 255);
  EXPECT_TRUE(waitUntil([&] { return content.presses == 1; }));
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
  const auto focus = [=](xcb_window_t target) {
    return waitUntil([=] {
      // The window manager may not have placed a new window yet.
      desktop().hands.click(target == otherWindow ? 150 : 550, 550);
      return desktop().focusedWindow() == target;
    });
  };
  content.editor.show();

  ASSERT_TRUE(focus(dyingWindow));
  ASSERT_TRUE(focus(otherWindow));
  panel.becomeKey();
  content.editor.setFocus();
  EXPECT_TRUE(waitUntil([&] { return panel.isKey() && content.editor.hasFocus(); }));
  panel.resignKey();
  EXPECT_TRUE(waitUntil([&] { return desktop().focusedWindow() == otherWindow && !panel.isKey(); }));
  EXPECT_FALSE(content.editor.hasFocus());

  ASSERT_TRUE(focus(dyingWindow));
  panel.becomeKey();
  EXPECT_TRUE(waitUntil([&] { return panel.isKey(); }));
  dying.reset();
  ASSERT_TRUE(waitUntil([=] { return !desktop().isManaged(dyingWindow); }));
  panel.resignKey();
  EXPECT_TRUE(waitUntil([&] { return desktop().focusedWindow() == otherWindow && !panel.isKey(); }))
      << "the window that had it is gone: the next one gets it";
}

TEST_F(X11NotchPanelTest, TakesFilesThatAreDroppedOnIt) {
  std::string calls;
  std::vector<FilePath> files{"none yet"};
  panel.onDragEnter = [&] { calls += "enter "; };
  panel.onDragExit = [&] { calls += "exit "; };
  panel.onDropFiles = [&](const std::vector<FilePath>& dropped) {
    calls += "drop ";
    files = dropped;
  };
  content.surface = {270, 0, 400, 200};
  panel.surfaceChanged();
  panel.setPointerArea(Rect{300, 0, 400, 200});
  const auto pull = [] {
    desktop().hands.movePointer(150, 650);
    desktop().hands.press();
    desktop().hands.movePointer(170, 640);
  };
  // A source follows the pointer only once its drag is on: it must keep moving.
  const auto dragUntil = [&](int y, const std::string& expected) {
    int step = 0;
    return waitUntil([&] {
      desktop().hands.movePointer(500 + ++step % 9, y);
      return calls == expected;
    });
  };
  const auto source = [](const char* type, const char* data) {
    return desktop().startRole({"--drag", type, data, "100", "600"});
  };
  {
    const auto files3 = source("text/uri-list", "file:///tmp/folder\r\nfile:///tmp/a\r\nfile:///tmp/%E9\r\n");
    pull();
    ASSERT_TRUE(dragUntil(100, "enter "));
    ASSERT_TRUE(dragUntil(500, "enter exit "));
    ASSERT_TRUE(dragUntil(100, "enter exit enter "));
    desktop().hands.release();
    EXPECT_EQ(files3->waitForLine("dropped"), " copy");
    EXPECT_TRUE(waitUntil([&] { return calls == "enter exit enter drop "; }));
    EXPECT_THAT(files, ElementsAre("/tmp/folder", "/tmp/a", "/tmp/\xe9"));
  }
  calls.clear();
  const std::pair<const char*, const char*> foreign[] = {{"text/uri-list", "https://example.org/\r\n"},
                                                         {"text/plain", "file:///tmp/a"}};
  for (const auto& [type, data] : foreign) {
    const auto other = source(type, data);
    pull();
    other->waitForLine("dragging");
    int moves = 0;
    waitUntil([&] {
      desktop().hands.movePointer(500 + moves, 100);
      return ++moves == 30;
    });
    desktop().hands.release();
    EXPECT_EQ(other->waitForLine("dropped"), " nothing") << data;
    EXPECT_EQ(calls, "") << data;
  }
}

TEST_F(X11NotchPanelTest, HandsScrollingToTheControllerFirst) {
  std::vector<ScrollEvent> events;
  bool consume = true;
  panel.onScroll = [&](const ScrollEvent& event) {
    events.push_back(event);
    return consume;
  };
  panel.setPointerArea(Rect{300, 0, 400, 200});

  constexpr unsigned wheelDown = 5;
  desktop().hands.click(500, 10, wheelDown);
  ASSERT_TRUE(waitUntil([&] { return events.size() == 1; }));
  EXPECT_FALSE(events[0].precise);
  EXPECT_EQ(events[0].phase, ScrollEvent::Phase::none);
  EXPECT_LT(events[0].deltaY, 0);
  EXPECT_EQ(content.scrolls, 0);

  consume = false;
  desktop().hands.click(500, 10, wheelDown);
  EXPECT_TRUE(waitUntil([&] { return content.scrolls == 1; })) << "what is not consumed scrolls the content";
}

TEST_F(X11NotchPanelTest, TellsWhenThePointerCrossesItsEdge) {
  int crossings = 0;
  panel.onPointerCrossing = [&] { ++crossings; };
  panel.setPointerArea(Rect{400, 0, 200, 32});
  desktop().hands.warpPointer(500, 10);
  EXPECT_TRUE(waitUntil([&] { return crossings == 1; }));
  desktop().hands.warpPointer(500, 700);
  EXPECT_TRUE(waitUntil([&] { return crossings == 2; }));
}
