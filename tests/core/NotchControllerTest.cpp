#include "core/NotchController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MemoryDesktop.h"
#include "support/MemoryPanel.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using ScrollPhase = ScrollEvent::Phase;

const Screen plain{.frame = {0, 0, 1920, 1080}, .visibleFrame = {0, 30, 1920, 1050}};
const Screen notched{.frame = {-1512, 100, 1512, 982},
    .visibleFrame = {-1512, 138, 1512, 944},
    .topSafeAreaInset = 32,
    .auxiliaryTopLeftWidth = 663,
    .auxiliaryTopRightWidth = 664};

class NotchControllerTest : public testing::Test {
 protected:
  NotchControllerTest() { desktop.screens.set({plain}); }

  void start() {
    controller = std::make_unique<NotchController>(desktop.ports, [this](NotchModel&) {
      auto made = std::make_unique<MemoryPanel>(desktop.pointer);
      panel = made.get();
      return made;
    });
  }
  NotchModel& model() { return controller->model(); }
  void pass(double seconds) { desktop.scheduler.advance(seconds); }

  MemoryDesktop desktop;
  std::unique_ptr<NotchController> controller;
  MemoryPanel* panel = nullptr;
};

TEST_F(NotchControllerTest, LiesOverTheNotchOfTheRightScreen) {
  Screen half = notched, low = plain, bare = plain, moved = plain, odd = plain;
  moved.frame.x = moved.visibleFrame.x = 1280;
  half.auxiliaryTopRightWidth.reset();
  low.frame = {1920, 200, 1280, 1024};
  low.visibleFrame = {1920, 242, 1280, 982};
  bare.visibleFrame = bare.frame;
  odd.visibleFrame = {0, 790, 1920, 290};
  const struct {
    const char* what;
    std::vector<Screen> screens;
    bool hasNotch;
    Size notch;
    Screen chosen;
  } cases[] = {
      {"a panel at the top", {plain}, false, {190, 30}, plain},
      {"elsewhere, else the same", {moved}, false, {190, 30}, moved},
      {"no panel", {bare}, false, {190, 24}, bare},
      {"most of it is kept free", {odd}, false, {190, 24}, odd},
      {"the main screen of two", {low, plain}, false, {190, 42}, low},
      {"the one with a notch", {plain, low, notched}, true, {185, 32}, notched},
      {"half a notch is none", {plain, half}, false, {190, 38}, half},
  };
  start();
  EXPECT_TRUE(panel->shown);
  for (const auto& c : cases) {
    desktop.screens.set(c.screens);
    EXPECT_EQ(model().hasNotch, c.hasNotch) << c.what;
    EXPECT_EQ(*model().notchSize, c.notch) << c.what;
    EXPECT_EQ(panel->screen, c.chosen) << c.what;
  }
  desktop.screens.set({});
  EXPECT_EQ(panel->screen, half) << "no screen: nothing moves";
}

TEST_F(NotchControllerTest, LooksAtThePointerWhereThePanelGoesNext) {
  desktop.screens.set({notched});
  desktop.pointer.move(Point{470, 10});
  start();
  EXPECT_TRUE(model().isHovering) << "before the window shows";
  pass(1);
  // It lies elsewhere on a panel that has moved, and nobody tells of that.
  desktop.pointer.setWantsActivity(false);
  desktop.pointer.move(Point{-1000, 10});
  desktop.screens.set({plain, notched});
  pass(1);
  EXPECT_FALSE(model().isHovering);
  const double before = panel->pointerArea->x;
  panel->panelSize.width += 100;
  panel->onResize();
  pass(1);
  EXPECT_EQ(panel->pointerArea->x, before + 50) << "the surface stays in the middle";
}

TEST_F(NotchControllerTest, NoticesFullScreenWindows) {
  const WindowInfo whole{.owner = 7, .bounds = notched.frame};
  const auto with = [&](auto change) {
    WindowInfo window = whole;
    change(window);
    return window;
  };
  const struct {
    const char* what;
    std::vector<WindowInfo> windows;
    bool covered;
  } cases[] = {
      {"whole screen", {whole}, true},
      {"no window", {}, false},
      {"behind others", {with([](auto& w) { w.bounds.width = 100; }), whole}, true},
      {"a point lower", {with([](auto& w) { w.bounds.y += 1; })}, false},
      {"at the top of another screen", {with([](auto& w) { w.bounds.y = 0; })}, false},
      {"narrower", {with([](auto& w) { w.bounds.width -= 1; })}, false},
      {"lower", {with([](auto& w) { w.bounds.height -= 38; })}, false},
      {"further right", {with([](auto& w) { w.bounds.x += 50; })}, true},
      {"a fraction of a pixel off", {with([](auto& w) { w.bounds.width += 0.3; })}, true},
      {"maximised on a bare screen", {with([](auto& w) { w.maximized = true; })}, false},
      {"our own", {with([&](auto& w) { w.owner = desktop.windows.ownProcess(); })}, false},
      {"nobody's", {with([](auto& w) { w.owner.reset(); })}, true},
  };
  desktop.screens.set({plain, notched});
  desktop.windows.set({{whole}});
  start();
  pass(0.1);
  EXPECT_TRUE(model().hiddenForFullscreen) << "from the start";
  for (const auto& c : cases) {
    desktop.windows.set(c.windows);
    EXPECT_EQ(model().hiddenForFullscreen, c.covered) << c.what;
  }
  std::vector<std::optional<Animation>> animations;
  const auto subscription = model().observe([&] { animations.push_back(transaction::current()); });
  desktop.windows.set(std::vector<WindowInfo>{});
  EXPECT_THAT(animations, ElementsAre(notchClose));
  desktop.windows.set(std::nullopt);
  desktop.screens.set({});
  desktop.windows.set({{whole}});
  EXPECT_FALSE(model().hiddenForFullscreen) << "without a list or a screen it keeps its value";
  desktop.screens.set({notched});
  EXPECT_TRUE(model().hiddenForFullscreen) << "the screen has come under the window";
}

TEST_F(NotchControllerTest, HandsHookEventsToTheTracker) {
  start();
  std::vector<std::optional<Animation>> animations;
  const auto subscription = model().claude.observe([&] { animations.push_back(transaction::current()); });
  desktop.notifications.post(
      eventNotification, {{"hook_event_name", "UserPromptSubmit"}, {"session_id", "a"}});
  EXPECT_EQ(model().claude.workingCount(), 1);
  EXPECT_THAT(animations, ElementsAre(notchOpen));
  desktop.notifications.post(eventNotification, {});
  EXPECT_EQ(model().claude.sessions->size(), 1u);

  const StringMap request{
      {"hook_event_name", "PermissionRequest"}, {"session_id", "a"}, {toolInputKey, "{}"}};
  desktop.permissions.ask({1, request});
  EXPECT_EQ(PermissionService::requestOf(model().claude.sessions->at("a"))->number, 1u);
  EXPECT_THAT(animations.back(), notchOpen);

  model().showcase = true;
  desktop.permissions.ask({2, request});
  EXPECT_EQ(desktop.permissions.answers.at(2), PermissionAnswer()) << "a demonstration answers nothing";
  desktop.notifications.post(eventNotification, {{"hook_event_name", "Stop"}, {"session_id", "showcase"}});
  EXPECT_EQ(model().claude.sessions->at("a").requests.size(), 1u);
  for (const char* id : {"b", "", "Showcase", "showcase-1", "showcase"}) {
    desktop.notifications.post(eventNotification, {{"hook_event_name", "PreToolUse"}, {"session_id", id}});
  }
  desktop.notifications.post(eventNotification, {{"hook_event_name", "PreToolUse"}});
  std::vector<std::string> ids;
  for (const auto& [id, session] : *model().claude.sessions) ids.push_back(id);
  EXPECT_THAT(ids, ElementsAre("a", "showcase", "showcase-1"));
  model().claude.interrupt("a");
  pass(1300);
  EXPECT_TRUE(model().claude.sessions->empty()) << "stale ones are forgotten";
}

TEST_F(NotchControllerTest, OpensWhatAnotherStartAsksFor) {
  start();
  desktop.notifications.post(openNotification, {{"window", "settings"}});
  int opened = 0;
  controller->onOpenSettings = [&] { ++opened; };
  desktop.notifications.post(openNotification, {{"window", "settings"}});
  EXPECT_EQ(opened, 1);
  EXPECT_FALSE(model().isExpanded);

  desktop.notifications.post(openNotification, {});
  pass(7.5);
  EXPECT_TRUE(model().isExpanded) << "the pointer may come yet";
  pass(1);
  EXPECT_FALSE(model().isExpanded);
  desktop.notifications.post(openNotification, {{"window", "notch"}});
  desktop.pointer.move(Point{470, 10});
  pass(1);
  desktop.pointer.move(Point{-390, 900});
  pass(0.5);
  EXPECT_FALSE(model().isExpanded) << "it was there and has left";
}

TEST_F(NotchControllerTest, ObeysTheKeyboard) {
  start();
  std::vector<std::string> focused;
  controller->onFocus = [&](const std::string& id) { focused.push_back(id); };
  for (const char* id : {"first", "second", "third"}) {
    pass(1);
    desktop.notifications.post(eventNotification, {{"hook_event_name", "Notification"}, {"session_id", id}});
  }
  // Heard of again, but it waits no longer than that.
  desktop.notifications.post(
      eventNotification, {{"hook_event_name", "Notification"}, {"session_id", "first"}});
  desktop.notifications.post(eventNotification, {{"hook_event_name", "Stop"}, {"session_id", "third"}});
  const struct {
    const char *action, *tab;
    bool opens;
    Tab shown;
    const char* focused;
  } cases[] = {
      {"close", "tray", false, Tab::home, ""},
      {"open", "tray", true, Tab::tray, ""},
      {"open", "notes", true, Tab::notes, "notes"},
      {"toggle", "", false, Tab::notes, ""},
      {"toggle", "", true, Tab::claude, "first"},
      {"open", "home", true, Tab::home, ""},
      {"next", "home", true, Tab::claude, "first"},
  };
  for (const auto& c : cases) {
    focused.clear();
    desktop.notifications.post(openNotification, {{"action", c.action}, {"tab", c.tab}});
    EXPECT_EQ(model().isExpanded, c.opens) << c.action << c.tab;
    EXPECT_EQ(panel->key, c.opens) << c.action << c.tab;
    EXPECT_EQ(model().tab, c.shown) << c.action << c.tab;
    EXPECT_EQ(focused, std::vector<std::string>(*c.focused ? 1 : 0, c.focused)) << c.action << c.tab;
  }
  panel->onKeyChange(true);
  pass(100);
  EXPECT_TRUE(model().isExpanded) << "the keyboard holds it open";
  EXPECT_FALSE(desktop.scheduler.nextDue() && *desktop.scheduler.nextDue() < 0.5);
  panel->onKeyChange(false);
  pass(0.2);
  EXPECT_FALSE(model().isExpanded) << "another window has it";

  desktop.notifications.post(openNotification, {{"action", "open"}});
  panel->onKeyChange(true);
  desktop.pointer.move(Point{-390, 900});
  pass(10);
  desktop.pointer.press();
  pass(0.2);
  EXPECT_FALSE(model().isExpanded) << "a click beside it";

  model().showcase = true;
  desktop.notifications.post(openNotification, {{"action", "open"}});
  EXPECT_FALSE(model().isExpanded) << "the demonstration is left alone";
}

TEST_F(NotchControllerTest, ChangesLevelsByCommandsEvenWhereTheKeysStayWithTheDesktop) {
  desktop.audioDevices.levels[{1, AudioScope::output}] = {0.5, false};
  desktop.audioDevices.plug({{.id = 1, .name = "Speakers", .hasOutput = true}}, 1, 0);
  desktop.brightness.plug(0.5);
  start();
  model().settings.replaceHUD = false;
  const struct {
    const char *level, *way;
    std::optional<Transient> shown;
  } cases[] = {{"volume", "up", Transient::hud(HUDKind::volume, 0.5625)},
      {"volume", "mute", Transient::hud(HUDKind::mute, 0)},
      {"brightness", "down", Transient::hud(HUDKind::brightness, 0.4375)}, {"brightness", "mute", {}}};
  for (const auto& c : cases) {
    pass(5);
    desktop.notifications.post(openNotification, {{"action", c.level}, {"way", c.way}});
    EXPECT_EQ(*model().transient, c.shown) << c.level << c.way;
    EXPECT_FALSE(model().isExpanded);
  }
}

TEST_F(NotchControllerTest, HandsOnDemonstrationCommands) {
  desktop.screens.set({notched});
  start();
  desktop.notifications.post(showcaseNotification, {{"cmd", "begin"}});
  std::vector<std::string> heard;
  controller->onShowcaseCommand = [&](const std::string& command, const std::string& argument) {
    heard.push_back(command + "|" + argument);
    model().showcase = command == "begin";
  };
  pass(1);
  EXPECT_NE(panel->pointerArea, std::nullopt);
  desktop.notifications.post(showcaseNotification, {{"cmd", "begin"}, {"arg", "fr"}});
  pass(0.1);
  EXPECT_EQ(panel->pointerArea, std::nullopt) << "the tracker learns of the demonstration at once";
  desktop.notifications.post(showcaseNotification, {{"cmd", "end"}});
  desktop.notifications.post(showcaseNotification, {});
  EXPECT_THAT(heard, ElementsAre("begin|fr", "end|", "|"));
}

TEST_F(NotchControllerTest, WaitsForEventsOnlyAtRest) {
  start();
  for (const Point pointer : {Point{470, 10}, Point{100, 900}}) {
    desktop.pointer.move(pointer);
    pass(1.5);
    EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt);
  }
}

TEST_F(NotchControllerTest, TakesDroppedFiles) {
  start();
  panel->onDragEnter();
  EXPECT_TRUE(model().isDraggingFiles && model().isDropTargeted);
  EXPECT_EQ(desktop.haptics.taps, 1);
  panel->onDragExit();
  EXPECT_TRUE(model().isDraggingFiles && !model().isDropTargeted) << "it may come back";
  panel->onDragEnter();
  EXPECT_EQ(desktop.haptics.taps, 1);
  panel->onDropFiles({"/tmp/a", "/tmp/b"});
  EXPECT_THAT(*model().tray.items, ElementsAre("/tmp/a", "/tmp/b"));
  EXPECT_TRUE(model().isExpanded && !model().isDraggingFiles && !model().isDropTargeted);
  EXPECT_EQ(model().tab, Tab::tray);
  EXPECT_EQ(desktop.haptics.taps, 2);
}

TEST_F(NotchControllerTest, SwipesOpenCloseAndSkip) {
  enum Before { compact, home, notes };
  const auto step = [](double x, double y, ScrollPhase phase = ScrollPhase::changed) {
    return ScrollEvent{.phase = phase, .precise = true, .directionInverted = true, .deltaX = x, .deltaY = y};
  };
  const auto begin = [&](double x, double y) { return step(x, y, ScrollPhase::began); };
  const auto unnatural = [&](double x, double y) {
    ScrollEvent event = begin(x, y);
    event.directionInverted = false;
    return event;
  };
  const ScrollEvent end = step(0, 0, ScrollPhase::ended), cancel = step(0, 0, ScrollPhase::cancelled),
                    rest = step(0, 0, ScrollPhase::mayBegin);
  ScrollEvent wheel = begin(0, 100), inertia = step(0, 100);
  wheel.precise = false;
  inertia.momentum = true;
  ScrollEvent scrolling = begin(0, -20), scrollingOn = step(0, -20);
  scrolling.contentCanFollow = scrollingOn.contentCanFollow = true;

  const struct {
    const char* what;
    Before before;
    std::vector<ScrollEvent> gesture;
    bool expanded;
    std::string commands;
    int taps;
  } cases[] = {
      {"down", compact, {begin(0, 15)}, true, {}, 1},
      {"down, not far enough", compact, {begin(0, 14)}, false, {}, 0},
      {"down in small steps", compact, {begin(0, 5), step(0, 5), step(0, 5)}, true, {}, 1},
      {"down in two gestures", compact, {begin(0, 10), begin(0, 10)}, false, {}, 0},
      {"after the end", compact, {begin(0, 10), end, step(0, 10)}, false, {}, 0},
      {"after a cancelled one", compact, {begin(0, 10), cancel, step(0, 10)}, false, {}, 0},
      {"with resting fingers", compact, {begin(0, 10), rest, step(0, 10)}, false, {}, 0},
      {"the end itself counts", compact, {begin(0, 10), step(0, 5, ScrollPhase::ended)}, true, {}, 1},
      {"fingers down, content up", compact, {unnatural(0, -15)}, true, {}, 1},
      {"fingers up, content down", compact, {unnatural(0, 15)}, false, {}, 0},
      {"down and back up", home, {begin(0, 15), step(0, -60)}, true, {}, 0},
      {"up", home, {begin(0, -15)}, false, {}, 1},
      {"up, not far enough", home, {begin(0, -14)}, true, {}, 0},
      {"up and back down", compact, {begin(0, -15), step(0, 60)}, false, {}, 0},
      {"open and close in one", compact, {begin(0, 15), step(0, -60)}, true, {}, 1},
      {"left", compact, {begin(-40, 0)}, false, "cmd 4\n", 1},
      {"right", compact, {begin(40, 0)}, false, "cmd 5\n", 1},
      {"right, not far enough", compact, {begin(36, 0)}, false, {}, 0},
      {"right on and on", home, {begin(40, 0), step(40, 0), step(-200, 0)}, true, "cmd 5\n", 1},
      {"right twice", compact, {begin(40, 0), begin(40, 0)}, false, "cmd 5\ncmd 5\n", 2},
      {"askew, rather right", compact, {begin(40, 47)}, false, "cmd 5\n", 1},
      {"askew, rather down", compact, {begin(40, 49)}, true, {}, 1},
      {"a mouse wheel", compact, {wheel}, false, {}, 0},
      {"a mouse wheel turns what is open", home, {wheel}, true, {}, 0},
      {"content that follows, to its end", home, {scrolling, step(0, -60)}, true, {}, 0},
      {"content under a swipe", home, {begin(0, -5), scrollingOn}, false, {}, 1},
      {"inertia", compact, {begin(0, 10), inertia}, false, {}, 0},
      {"inertia resets nothing", compact, {begin(0, 10), inertia, step(0, 5)}, true, {}, 1},
      {"another tab scrolls itself", notes, {begin(0, -100)}, true, {}, 0},
  };
  desktop.folders.root.write("modules/MediaBridge.so", "");
  for (const bool playing : {true, false}) {
    for (const auto& c : cases) {
      desktop.haptics.taps = 0;
      start();
      desktop.processes.input.clear();
      model().media.title = playing ? "Song" : "";
      if (c.before != compact) model().expand(c.before == home ? Tab::home : Tab::notes);
      panel->key = true;
      for (const ScrollEvent& event : c.gesture) {
        const bool isGesture =
            c.before == compact || (c.before == home && event.precise && !c.gesture.front().contentCanFollow);
        EXPECT_EQ(panel->onScroll(event), isGesture) << c.what;
      }
      EXPECT_EQ(panel->resignations, c.before != compact && !c.expanded ? 1 : 0) << "the focus goes back";
      EXPECT_EQ(model().isExpanded, c.expanded) << c.what;
      const bool skips = playing || c.commands.empty();
      EXPECT_EQ(desktop.processes.input, skips ? c.commands : "") << c.what;
      EXPECT_EQ(desktop.haptics.taps, skips ? c.taps : 0) << c.what;
    }
  }
}

TEST_F(NotchControllerTest, NothingIsLeftBehind) {
  start();
  model().show(Transient::lowPowerMode(true), 1);
  model().notes.setText("typed");
  pass(0.1);
  controller.reset();
  desktop.notifications.post(eventNotification, {{"hook_event_name", "Stop"}});
  desktop.screens.set({notched});
  desktop.pointer.move(Point{960, 10});
  pass(60);
  EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt);
}

}  // namespace
}  // namespace tarnwick
