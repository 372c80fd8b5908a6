// Screens, windows and pointer, as another program's doings change them.
#include <gtest/gtest.h>

#include <algorithm>

#include "linux/x11/X11Pointer.h"
#include "linux/x11/X11WindowList.h"
#include "linux/x11/XSettings.h"
#include "platform/TestDesktop.h"

using namespace tarnwick;
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
  X11Connection& connection = desktop().connection();
  X11WindowList list(connection, desktop().screens(), desktop().scheduler);
  int changes = 0;
  const auto subscription = list.observe([&] { ++changes; });
  const auto windowsOf = [&](int64_t process) {
    std::vector<std::pair<Rect, bool>> found;
    const auto windows = list.onScreen();
    for (const WindowInfo& each : windows.value_or(std::vector<WindowInfo>())) {
      if (each.owner == process) found.emplace_back(each.bounds, each.maximized);
    }
    return found;
  };
  /// Waits to be told, and then for the window to be so.
  const auto becomes = [&](int64_t process, std::optional<Rect> bounds, bool maximized = false) {
    const bool told = waitUntil([&] { return changes > 0; });
    changes = 0;
    const auto expected = bounds ? std::vector{std::pair(*bounds, maximized)} : decltype(windowsOf(0)){};
    return told && waitUntil([&] { return windowsOf(process) == expected; });
  };
  const Rect left{0, 0, 1000, 800}, right{1000, 200, 400, 300};
  const auto control = [](const QStringList& arguments) { QProcess::execute("xdotool", arguments); };

  EXPECT_TRUE(list.onScreen().has_value());
  const auto film = desktop().startWindow("film", {100, 100, 300, 200}, {"fullscreen"});
  EXPECT_TRUE(becomes(film->id(), left));
  EXPECT_NE(list.ownProcess(), film->id());
  const auto other = desktop().startWindow("other", {1300, 300, 300, 200}, {"fullscreen"});
  EXPECT_TRUE(becomes(other->id(), right));
  const auto dock = desktop().startWindow("dock", {0, 0, 1000, 30}, {"dock", "0"});
  const auto icons = desktop().startWindow("icons", {0, 0, 1000, 800}, {"desktop"});
  const auto editor = desktop().startWindow("editor", {100, 100, 300, 200}, {"maximized"});
  EXPECT_TRUE(becomes(editor->id(), left, true));
  EXPECT_TRUE(windowsOf(dock->id()).empty() && windowsOf(icons->id()).empty());

  // Neither shows in anything but the window's own properties.
  const xcb_window_t editorWindow = desktop().awaitWindow("editor");
  desktop().changeState(editorWindow, "_NET_WM_STATE_FULLSCREEN", true);
  EXPECT_TRUE(becomes(editor->id(), left)) << "full-screen, and maximised besides";
  desktop().changeState(editorWindow, "_NET_WM_STATE_FULLSCREEN", false);
  EXPECT_TRUE(becomes(editor->id(), left, true));

  const QString filmWindow = QString::number(desktop().awaitWindow("film"));
  control({"windowminimize", filmWindow});
  EXPECT_TRUE(becomes(film->id(), std::nullopt));
  control({"windowmap", filmWindow});
  EXPECT_TRUE(becomes(film->id(), left));
  control({"set_desktop", "1"});
  EXPECT_TRUE(becomes(film->id(), std::nullopt)) << "on another workspace";
  control({"set_desktop", "0"});
  EXPECT_TRUE(becomes(film->id(), left));

  // Each monitor may have a workspace of its own …
  const uint32_t workspace = 1;
  const auto set = [&](xcb_window_t window, const char* name, xcb_atom_t type, uint32_t value) {
    xcb_change_property(
        connection, XCB_PROP_MODE_REPLACE, window, connection.atom(name), type, 32, 1, &value);
    xcb_flush(connection);
  };
  set(desktop().awaitWindow("editor"), "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, workspace);
  EXPECT_TRUE(becomes(editor->id(), left, true));
  // … but not where the window manager composes the screen: it keeps mapped what is elsewhere.
  const auto manager =
      connection.property(connection.requestProperty(connection.root(), "_NET_SUPPORTING_WM_CHECK"));
  const xcb_window_t own = xcb_generate_id(connection);
  xcb_create_window(
      connection, 0, own, connection.root(), -9, -9, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
  xcb_set_selection_owner(connection, own, connection.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
  set(connection.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, own);
  set(desktop().awaitWindow("editor"), "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, workspace);
  EXPECT_TRUE(becomes(editor->id(), std::nullopt));
  xcb_destroy_window(connection, own);
  set(connection.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, manager.value().front());
}

TEST(X11Pointer, TellsWhereItIsAndWhatItHolds) {
  X11Pointer pointer(desktop().connection(), desktop().screens(), desktop().scheduler);
  desktop().hands.movePointer(1200, 300);
  EXPECT_TRUE(waitUntil([&] { return pointer.position() == Point{1100, 250}; }));
  pointer.setOrigin({1000, 100});
  EXPECT_EQ(pointer.position(), (Point{100, 150}));
  EXPECT_FALSE(pointer.buttonDown());
  for (const unsigned button : {1u, 2u, 3u}) {
    desktop().hands.press(button);
    EXPECT_TRUE(waitUntil([&] { return pointer.buttonDown(); })) << button;
    desktop().hands.release(button);
    EXPECT_TRUE(waitUntil([&] { return !pointer.buttonDown(); })) << button;
  }
}

TEST(X11Pointer, ReportsActivityOnlyWhileItIsWanted) {
  X11Pointer pointer(desktop().connection(), desktop().screens(), desktop().scheduler);
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
  X11Pointer pointer(desktop().connection(), desktop().screens(), desktop().scheduler);
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
    EXPECT_EQ(pointer.dragTypes()->size(), each.files) << each.data;
    desktop().hands.release();
    EXPECT_NE(source->waitForLine("dropped"), "");
  }
}

TEST(XSettings, TellWhatTheSettingsManagerHasSet) {
  using namespace std::string_view_literals;
  // In both orders of bytes: a whole number, a colour, and the texts.
  const std::string_view little =
      "\0\0\0\0\7\0\0\0\4\0\0\0"
      "\0\0\3\0Dpi\0\1\0\0\0\1\1\1\1"
      "\2\0\1\0C\0\0\0\1\0\0\0\1\1\1\1\1\1\1\1"
      "\1\0\4\0Long\1\0\0\0\3\0\0\0abc\0"
      "\1\0\21\0Net/IconThemeName\0\0\0\1\0\0\0\7\0\0\0Papirus\0"sv;
  const std::string_view big = "\1\0\0\0\0\0\0\7\0\0\0\1\1\0\0\4Long\0\0\0\1\0\0\0\3abc\0"sv;
  EXPECT_EQ(textOfXSettings(little, "Long"), "abc");
  EXPECT_EQ(textOfXSettings(big, "Long"), "abc");
  EXPECT_EQ(textOfXSettings(little, "Dpi"), "");
  for (size_t length = 0; length < little.size() - 8; ++length) {
    EXPECT_EQ(textOfXSettings(little.substr(0, length), "Net/IconThemeName"), "");
  }

  X11Connection& connection = desktop().connection();
  EXPECT_EQ(xSetting(connection, "Net/IconThemeName"), "") << "nobody tells";
  const xcb_window_t manager = xcb_generate_id(connection);
  xcb_create_window(
      connection, 0, manager, connection.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
  const xcb_atom_t settings = connection.atom("_XSETTINGS_SETTINGS");
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, manager, settings, settings, 8,
      static_cast<uint32_t>(little.size()), little.data());
  xcb_set_selection_owner(connection, manager, connection.atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
  EXPECT_EQ(xSetting(connection, "Net/IconThemeName"), "Papirus");
  xcb_destroy_window(connection, manager);
}
