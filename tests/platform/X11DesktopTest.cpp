// Screens, windows and pointer, as another program's doings change them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "linux/x11/X11Pointer.h"
#include "linux/x11/X11WindowList.h"
#include "platform/TestDesktop.h"

using namespace tarnwick;
using testing::Contains;
using testing::Not;

namespace {

TestDesktop& desktop() { return TestDesktop::shared(); }

QStringList drag(const QString& type, const QString& data) { return {"--drag", type, data, "100", "500"}; }

/// Presses in the drag source at (150, 550) and pulls until its drag is on.
void beginDrag() {
  desktop().hands.movePointer(150, 550);
  desktop().hands.press();
  for (int step = 1; step <= 10; ++step) desktop().hands.movePointer(150 + 4 * step, 550);
}

class Activity {
 public:
  explicit Activity(X11Pointer& pointer) : subscription_(pointer.observe([this] { ++count; })) {}
  int count = 0;

 private:
  Subscription subscription_;
};

}  // namespace

TEST(X11Screens, ReportEachMonitorInItsOwnRatio) {
  const std::vector<Screen> screens = desktop().screens().all();
  ASSERT_EQ(screens.size(), 2u);
  EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1000, 800})) << "the primary one comes first";
  EXPECT_EQ(screens[1].frame, (Rect{1000, 200, 400, 300}));
  EXPECT_EQ(screens[1].auxiliaryTopLeftWidth, std::nullopt);

  EXPECT_EQ(desktop().screens().toPoints(1200, 300), (Point{1100, 250}));
  EXPECT_EQ(desktop().screens().toPoints({1000, 200, 800, 600}), screens[1].frame);
  EXPECT_EQ(desktop().screens().ratioAt({1100, 250, 10, 10}), 2);
  EXPECT_EQ(desktop().screens().ratioAt({100, 250, 10, 10}), 1);
}

TEST(X11Screens, APanelTakesItsStripFromItsOwnMonitor) {
  X11Screens& screens = desktop().screens();
  int changes = 0;
  const auto subscription = screens.observe([&] { ++changes; });
  const auto visible = [&](size_t index) { return screens.all()[index].visibleFrame; };
  {
    const auto panel = desktop().startWindow("panel", {0, 0, 1000, 30}, {"dock", "30"});
    EXPECT_TRUE(waitUntil([&] { return visible(0) == Rect{0, 30, 1000, 770}; }));
    EXPECT_EQ(visible(1), (Rect{1000, 200, 400, 300}));
    EXPECT_GT(changes, 0);
  }
  EXPECT_TRUE(waitUntil([&] { return visible(0) == Rect{0, 0, 1000, 800}; }));

  // The strip is measured from the top of the whole display: 200 pixels lie above this monitor.
  const auto panel = desktop().startWindow("panel", {1000, 200, 800, 40}, {"dock", "240"});
  EXPECT_TRUE(waitUntil([&] { return visible(1) == Rect{1000, 220, 400, 280}; }));
  EXPECT_EQ(visible(0), (Rect{0, 0, 1000, 800}));
}

TEST(X11Screens, NoticeAMonitorThatComesAndGoes) {
  X11Screens& screens = desktop().screens();
  int changes = 0;
  const auto subscription = screens.observe([&] { ++changes; });
  QProcess::execute("xrandr", {"--setmonitor", "third", "200/50x200/50+1600+0", "none"});
  EXPECT_TRUE(waitUntil([&] { return changes > 0 && screens.all().size() == 3; }));
  QProcess::execute("xrandr", {"--delmonitor", "third"});
  EXPECT_TRUE(waitUntil([&] { return screens.all().size() == 2; }));
}

TEST(X11WindowList, ListsWhatTheUserSees) {
  X11WindowList list(desktop().connection(), desktop().screens());
  const auto windowsOf = [&](int64_t process) {
    std::vector<Rect> bounds;
    const auto windows = list.onScreen();
    for (const WindowInfo& each : windows.value_or(std::vector<WindowInfo>())) {
      if (each.owner == process && each.layer == 0) bounds.push_back(each.bounds.value());
    }
    return bounds;
  };
  const auto has = [&](int64_t process, const Rect& bounds) {
    return [=] { return windowsOf(process) == std::vector{bounds}; };
  };

  EXPECT_TRUE(list.onScreen().has_value());
  const auto full = desktop().startWindow("full", {100, 100, 300, 200}, {"fullscreen"});
  EXPECT_TRUE(waitUntil(has(full->id(), {0, 0, 1000, 800})));
  EXPECT_NE(list.ownProcess(), full->id());

  const auto fullOnTheRight = desktop().startWindow("right", {1300, 300, 300, 200}, {"fullscreen"});
  EXPECT_TRUE(waitUntil(has(fullOnTheRight->id(), {1000, 200, 400, 300})));

  const auto dock = desktop().startWindow("dock", {0, 0, 1000, 30}, {"dock", "30"});
  EXPECT_TRUE(windowsOf(dock->id()).empty());

  const std::string title = std::to_string(desktop().awaitWindow("full"));
  QProcess::execute("xdotool", {"windowminimize", QString::fromStdString(title)});
  EXPECT_TRUE(waitUntil([&] { return windowsOf(full->id()).empty(); })) << "minimised";
  QProcess::execute("xdotool", {"windowmap", QString::fromStdString(title)});
  EXPECT_TRUE(waitUntil([&] { return !windowsOf(full->id()).empty(); }));

  QProcess::execute("xdotool", {"set_desktop", "1"});
  EXPECT_TRUE(waitUntil([&] { return windowsOf(full->id()).empty(); })) << "on another workspace";
  QProcess::execute("xdotool", {"set_desktop", "0"});
  EXPECT_TRUE(waitUntil([&] { return !windowsOf(full->id()).empty(); }));
}

TEST(X11Pointer, TellsWhereItIsAndWhatItHolds) {
  X11Pointer pointer(desktop().connection(), desktop().screens());
  desktop().hands.movePointer(1200, 300);
  EXPECT_TRUE(waitUntil([&] { return pointer.position() == Point{1100, 250}; }));
  EXPECT_FALSE(pointer.leftButtonDown());
  desktop().hands.press();
  EXPECT_TRUE(waitUntil([&] { return pointer.leftButtonDown(); }));
  desktop().hands.release();
  EXPECT_TRUE(waitUntil([&] { return !pointer.leftButtonDown(); }));
}

TEST(X11Pointer, ReportsActivityOnlyWhileItIsWanted) {
  X11Pointer pointer(desktop().connection(), desktop().screens());
  Activity activity(pointer);
  const auto other = desktop().startWindow("other", {300, 300, 200, 200});

  desktop().hands.movePointer(310, 310);
  pointer.setWantsActivity(true);
  ASSERT_TRUE(pointer.position());  // the server has heard of the wish before it answers
  desktop().hands.movePointer(400, 400);
  EXPECT_TRUE(waitUntil([&] { return activity.count > 0; })) << "moving over another program's window";
  activity.count = 0;
  desktop().hands.press(3);
  EXPECT_TRUE(waitUntil([&] { return activity.count > 0; })) << "pressing";
  desktop().hands.release(3);

  pointer.setWantsActivity(false);
  // Whatever was on its way has arrived with this reply.
  EXPECT_TRUE(waitUntil([&] { return pointer.position().has_value(); }));
  activity.count = 0;
  for (int x = 300; x < 500; ++x) desktop().hands.movePointer(x, 350);
  EXPECT_TRUE(waitUntil([&] { return pointer.position() == Point{499, 350}; }));
  EXPECT_EQ(activity.count, 0);
}

TEST(X11Pointer, KnowsADragOfFilesFromOneOfText) {
  X11Pointer pointer(desktop().connection(), desktop().screens());
  Activity activity(pointer);
  pointer.setWantsActivity(true);
  const struct {
    const char *type, *data;
    bool files;
  } cases[] = {
      {"text/uri-list", "file:///tmp/a%20file\r\nfile:///tmp/b\r\n", true},
      {"text/plain", "file:///tmp/text", false},
      {"text/uri-list", "https://example.org/\r\n", false},
  };
  for (const auto& each : cases) {
    const auto source = desktop().startRole(drag(each.type, each.data));
    const int before = pointer.dragChangeCount();
    beginDrag();
    ASSERT_TRUE(waitUntil([&] { return pointer.dragChangeCount() != before && pointer.dragTypes(); }));
    EXPECT_GT(activity.count, 0);
    if (each.files) {
      EXPECT_THAT(*pointer.dragTypes(), Contains(fileListType)) << each.data;
    } else {
      EXPECT_THAT(*pointer.dragTypes(), Not(Contains(fileListType))) << each.data;
    }
    desktop().hands.release();
    EXPECT_NE(source->waitForLine("dropped"), "");
  }
}
