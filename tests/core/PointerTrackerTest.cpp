#include "core/PointerTracker.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "support/MemoryDesktop.h"
#include "support/MemoryPanel.h"

namespace tarnwick {
namespace {

constexpr double tick = 1.0 / 60;
/// With the model's notch of 185 × 32, the surface at rest takes x from 371.5 to 568.5 and y to 32.
constexpr Point onNotch{470, 10}, farAway{-390, 900};
const std::vector<std::string> files{"text/uri-list", "text/plain"}, text{"text/plain"};

/// All that a tracker works on.
struct Stage {
  Stage() { tracker.start(); }
  explicit Stage(Pointer& pointer) : panel(pointer) { tracker.start(); }

  MemoryDesktop desktop;
  NotchModel model{desktop.ports};
  MemoryPanel panel{desktop.pointer};
  HapticFeedback haptics{model.settings, desktop.haptics};
  PointerTracker tracker{desktop.scheduler, model, panel, haptics};
};

class PointerTrackerTest : public testing::Test, protected Stage {
 protected:
  void pass(double seconds) { desktop.scheduler.advance(seconds); }
  void moveTo(Point point, double stay = 2 * tick) {
    desktop.pointer.move(point);
    pass(stay);
  }
  bool asleep() { return !desktop.scheduler.nextDue(); }
};

TEST_F(PointerTrackerTest, HoversAtTheEdgesOfTheSurface) {
  // The area at rest, three points around the surface; hovering adds nine points at each side and five below.
  const struct {
    Point point;
    bool enters, stays;
  } cases[] = {
      {{368.5, 10}, true, true},
      {{368.4, 10}, false, true},
      {{571.4, 10}, true, true},
      {{571.5, 10}, false, true},
      {{359.4, 10}, false, false},
      {{580.5, 10}, false, false},
      {{470, 34.9}, true, true},
      {{470, 35}, false, true},
      {{470, 39.9}, false, true},
      {{470, 40}, false, false},
      {{470, -5}, true, true},
      {{470, -5.1}, false, false},
  };
  for (const auto& c : cases) {
    moveTo(farAway, 1);
    moveTo(c.point, 1);
    EXPECT_EQ(model.isHovering, c.enters) << c.point.x << ", " << c.point.y;
    moveTo(onNotch, 1);
    moveTo(c.point, 1);
    EXPECT_EQ(model.isHovering, c.stays) << c.point.x << ", " << c.point.y;
  }
  moveTo(onNotch);
  desktop.pointer.move(std::nullopt);
  pass(1);
  EXPECT_FALSE(model.isHovering) << "a pointer that nobody sees is outside";
}

TEST_F(PointerTrackerTest, ComesFromTheEdgeWhereItCannotBeSeen) {
  model.hasNotch = false;
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea, std::nullopt) << "what lies below loses no click";
  const struct {
    Point point;
    double rest;
    bool comes;
  } cases[] = {
      {{470, 0}, 0.32, true},
      {{470, 0}, 0.28, false},
      {{470, 1}, 1, false},
      {{371.5, 0.9}, 1, true},
      {{371.4, 0}, 1, false},
      {{568.5, 0}, 1, false},
  };
  for (const auto& c : cases) {
    moveTo(farAway, 1);
    moveTo(c.point, c.rest);
    EXPECT_EQ(model.isHovering, c.comes) << c.point.x << ", " << c.point.y << " for " << c.rest;
    EXPECT_EQ(panel.pointerArea.has_value(), c.comes);
  }
  moveTo(farAway, 1);
  desktop.pointer.press();
  moveTo({470, 0}, 1);
  EXPECT_FALSE(model.isHovering) << "a button is held";
  desktop.pointer.release();
  pass(0.35);
  ASSERT_TRUE(model.isHovering);
  moveTo({470, 30}, 1);
  EXPECT_TRUE(model.isHovering) << "now it is there";
  moveTo(farAway, 1);
  EXPECT_FALSE(model.isHovering);
  EXPECT_TRUE(asleep());

  // Where only a window feels the pointer.
  desktop.pointer.knownEverywhere = false;
  model.setHovering(true);
  pass(1);
  EXPECT_EQ(panel.pointerArea, (Rect{371.5, -2, 197, 3}));
  model.settings.comesAtEdge = false;
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea, std::nullopt);
  moveTo({470, 0}, 1);
  EXPECT_FALSE(model.isHovering);
  model.claude.handle({{"hook_event_name", "PreToolUse"}});
  moveTo({470, 10});
  EXPECT_TRUE(model.isHovering) << "there is something to be seen";
}

TEST_F(PointerTrackerTest, EntryIsFeltOnceAndHoverEndsSoonAfterLeaving) {
  moveTo(onNotch);
  EXPECT_TRUE(model.isHovering);
  EXPECT_EQ(desktop.haptics.taps, 1);
  moveTo({460, 12}, 1);
  EXPECT_EQ(desktop.haptics.taps, 1);
  moveTo(farAway, 0.03);
  EXPECT_TRUE(model.isHovering);
  pass(0.04);
  EXPECT_FALSE(model.isHovering);
  model.settings.haptics = false;
  moveTo(onNotch, 1);
  EXPECT_EQ(desktop.haptics.taps, 1);
  EXPECT_FALSE(model.isExpanded) << "the body opens on hover only where the user wants it";
}

TEST_F(PointerTrackerTest, OpensOnDwell) {
  model.settings.expandOnHover = true;
  const auto restsFor = [&](double seconds) {
    moveTo(farAway, 1);
    model.collapse();
    moveTo(onNotch, seconds);
    return model.isExpanded.get();
  };
  EXPECT_FALSE(restsFor(0.29));
  moveTo(farAway, 1);
  EXPECT_FALSE(model.isExpanded) << "passing through counts for nothing";
  EXPECT_TRUE(restsFor(0.31 + tick));

  moveTo(farAway, 1);
  desktop.pointer.press();
  EXPECT_FALSE(restsFor(2)) << "the button is held";
  desktop.pointer.release();
  pass(2 * tick);
  EXPECT_TRUE(model.isExpanded) << "and let go";

  moveTo(farAway, 1);
  model.settings.expandOnHover = false;
  EXPECT_FALSE(restsFor(2));
  model.settings.expandOnHover = true;
  pass(2 * tick);
  EXPECT_TRUE(model.isExpanded) << "switched on under a resting pointer";
}

TEST_F(PointerTrackerTest, ClosesAfterThePointerHasLeft) {
  moveTo(onNotch);
  model.expand();
  moveTo({470, 150}, 5);
  moveTo(farAway, 0.1);
  EXPECT_TRUE(model.isExpanded);
  moveTo({470, 150}, 5);
  EXPECT_TRUE(model.isExpanded) << "it came back in time";
  moveTo(farAway, 0.13 + tick);
  EXPECT_FALSE(model.isExpanded);

  moveTo(onNotch);
  model.expand();
  model.setDraggingFiles(true);
  model.isDropTargeted = true;
  moveTo(farAway, 1);
  EXPECT_TRUE(model.isExpanded) << "it stays for a drag";
  model.setDraggingFiles(false);
  pass(2 * tick);
  EXPECT_FALSE(model.isExpanded);

  moveTo(onNotch);
  model.expand();
  model.floating = Rect{600, 160, 120, 100};
  moveTo({650, 250}, 1);
  EXPECT_TRUE(model.isExpanded) << "a menu belongs to it";
  model.floating = std::nullopt;
  pass(0.13 + 2 * tick);
  EXPECT_FALSE(model.isExpanded) << "and has closed";
}

TEST_F(PointerTrackerTest, StaysOpenForADragThatBeganInTheBody) {
  constexpr Point inBody{470, 150};
  const struct {
    const char* what;
    Point press;
    std::function<void()> then;
    bool stays;
  } cases[] = {
      {"a drag in the body", inBody, [] {}, true},
      {"one that began elsewhere", farAway, [] {}, false},
      {"one that has become a drag between programs", inBody, [this] { desktop.pointer.startDrag(text); },
          false},
      {"a body that was closed by other means", inBody,
          [this] { model.collapse(), pass(2 * tick), model.expand(); }, false},
  };
  for (const auto& c : cases) {
    moveTo(onNotch);
    model.expand();
    moveTo(inBody, 5);
    if (!(c.press == inBody)) moveTo(c.press, tick);
    desktop.pointer.press();
    // Out within the same tick.
    desktop.pointer.move(farAway);
    pass(2 * tick);
    c.then();
    pass(3);
    EXPECT_EQ(model.isExpanded, c.stays) << c.what;
    desktop.pointer.move(std::nullopt);
    pass(1);
    EXPECT_EQ(model.isExpanded, c.stays) << c.what << ", where nobody sees the pointer";
    desktop.pointer.release();
    pass(0.13 + 2 * tick);
    EXPECT_FALSE(model.isExpanded) << c.what;
    EXPECT_FALSE(model.isHovering) << c.what;
    EXPECT_TRUE(asleep()) << c.what;
  }
}

TEST_F(PointerTrackerTest, FollowsAFileDrag) {
  desktop.pointer.press();
  desktop.pointer.startDrag(files);
  pass(2 * tick);
  // 140 and 110 points around the surface.
  moveTo({231.4, 10});
  EXPECT_FALSE(model.isDraggingFiles);
  moveTo({470, 142.1});
  EXPECT_FALSE(model.isDraggingFiles);
  EXPECT_EQ(panel.pointerArea, (Rect{231.5, -112, 477, 254})) << "the window is ready for it";
  moveTo({231.6, 10});
  EXPECT_TRUE(model.isDraggingFiles);
  EXPECT_EQ(desktop.haptics.taps, 1);
  // Now 220 and 180 points around the expanded surface of 560 × 170.
  moveTo({-29, 349});
  EXPECT_TRUE(model.isDraggingFiles);
  EXPECT_EQ(panel.pointerArea, (Rect{-30, -182, 1000, 532}));
  moveTo({-31, 349});
  EXPECT_FALSE(model.isDraggingFiles);
  moveTo({310, 100});
  EXPECT_TRUE(model.isDraggingFiles) << "it comes back";

  model.isDropTargeted = true;
  desktop.pointer.release();
  pass(0.39);
  EXPECT_TRUE(model.isDraggingFiles) << "a drop may still arrive";
  pass(0.01 + 2 * tick);
  EXPECT_FALSE(model.isDraggingFiles);
  EXPECT_FALSE(model.isDropTargeted);
}

TEST_F(PointerTrackerTest, OnlyDragsOfFilesOpenTheNotch) {
  const struct {
    const char* what;
    std::optional<std::vector<std::string>> types, later;
    bool opens;
  } cases[] = {
      {"files", files, {}, true},
      {"text", text, {}, false},
      {"not known yet, then files", {}, files, true},
      {"not known yet, then text", {}, text, false},
      {"nothing", std::vector<std::string>{}, {}, false},
  };
  for (const auto& c : cases) {
    moveTo({470, 60}, 1);
    desktop.pointer.press();
    pass(2 * tick);
    desktop.pointer.startDrag(c.types);
    pass(2 * tick);
    if (c.later) {
      EXPECT_FALSE(model.isDraggingFiles) << c.what;
      desktop.pointer.tellDragTypes(*c.later);
      pass(2 * tick);
    }
    EXPECT_EQ(model.isDraggingFiles, c.opens) << c.what;
    desktop.pointer.release();
    pass(1);
    EXPECT_FALSE(model.isDraggingFiles) << c.what;
  }
  // The files of an earlier drag are still there; a new press alone is no drag.
  desktop.pointer.tellDragTypes(files);
  desktop.pointer.press();
  pass(1);
  EXPECT_FALSE(model.isDraggingFiles);
}

TEST_F(PointerTrackerTest, ASecondDragOutlivesTheEndOfTheFirst) {
  const auto drag = [&] {
    desktop.pointer.press();
    pass(2 * tick);
    desktop.pointer.startDrag(files);
    pass(2 * tick);
  };
  moveTo({470, 60});
  drag();
  desktop.pointer.release();
  pass(0.2);
  drag();
  const int taps = desktop.haptics.taps;
  pass(1);
  EXPECT_TRUE(model.isDraggingFiles);
  EXPECT_EQ(desktop.haptics.taps, taps);
}

TEST_F(PointerTrackerTest, ADragWhoseButtonNobodySeesEndsWhenItLeavesTheWindow) {
  moveTo({470, 60});
  // As the controller does when the window tells that the drag has come and gone.
  const auto enter = [&] { model.setDraggingFiles(true), model.isDropTargeted = true; };
  enter();
  pass(60);
  EXPECT_TRUE(model.isDraggingFiles);
  model.isDropTargeted = false;
  pass(0.3);
  enter();
  pass(60);
  EXPECT_TRUE(model.isDraggingFiles) << "it came back";
  model.isDropTargeted = false;
  pass(0.39);
  EXPECT_TRUE(model.isDraggingFiles);
  pass(0.01 + 2 * tick);
  EXPECT_FALSE(model.isDraggingFiles);
}

TEST_F(PointerTrackerTest, TakesThePointerWhereItCountsAsInside) {
  pass(1);
  EXPECT_EQ(panel.pointerArea, (Rect{368.5, -5, 203, 40}));
  const int changes = panel.pointerAreaChanges;
  moveTo({470, 300}, 1);
  model.tab = Tab::notes;
  pass(1);
  EXPECT_EQ(panel.pointerAreaChanges, changes) << "told only of changes";

  model.show(Transient::hud(HUDKind::volume, 1), 1);
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea, (Rect{264.5, -5, 411, 40})) << "a sleeping tracker follows the surface";
  pass(2);
  model.claude.handle({{"hook_event_name", "PreToolUse"}});
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea->width, 203 + 88);
  model.claude.sessions = {};
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea->width, 203);
  model.media.title = "Song";
  model.media.playing = true;
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea->width, 203 + 88);
}

TEST_F(PointerTrackerTest, LeavesTheDemonstrationAlone) {
  model.showcase = true;
  tracker.wake();
  moveTo(onNotch, 1);
  EXPECT_EQ(panel.pointerArea, std::nullopt);
  EXPECT_FALSE(model.isHovering);
  model.setHovering(true);
  model.expand();
  moveTo(farAway, 1);
  EXPECT_TRUE(model.isExpanded && model.isHovering);
  EXPECT_TRUE(asleep());
  EXPECT_FALSE(desktop.pointer.wantsActivity());
  model.showcase = false;
  tracker.wake();
  pass(2 * tick);
  EXPECT_FALSE(model.isExpanded || model.isHovering);
  EXPECT_NE(panel.pointerArea, std::nullopt);
}

TEST_F(PointerTrackerTest, SleepsWhileNothingCanChange) {
  const struct {
    const char* what;
    std::function<void()> stage;
  } cases[] = {
      {"outside", [&] { desktop.pointer.move(farAway); }},
      {"inside", [&] { desktop.pointer.move(onNotch); }},
      {"button held", [&] { desktop.pointer.press(); }},
      {"dragging files inside", [&] { desktop.pointer.startDrag(files); }},
      {"open", [&] { desktop.pointer.release(), model.expand(); }},
      {"open by dwell", [&] { model.settings.expandOnHover = true; }},
      {"outside again", [&] { desktop.pointer.move(farAway); }},
      {"unknown", [&] { desktop.pointer.move(std::nullopt); }},
  };
  for (const auto& c : cases) {
    c.stage();
    pass(1);
    EXPECT_TRUE(asleep()) << c.what;
    EXPECT_TRUE(desktop.pointer.wantsActivity()) << c.what;
    const int wakeUps = desktop.scheduler.wakeUps();
    pass(3600);
    EXPECT_EQ(desktop.scheduler.wakeUps(), wakeUps) << c.what;
  }
  // While it looks by itself it wants to be told of nothing, and a moving pointer keeps it looking.
  pass(tick / 2);
  for (int step = 0; step < 30; ++step) {
    desktop.pointer.move(Point{100.0 + step, 900});
    pass(tick);
    EXPECT_FALSE(desktop.pointer.wantsActivity()) << step;
  }
}

TEST(PointerTrackerRace, SeesWhatHappenedWhileItFellAsleep) {
  // The pointer enters after the last look and before activity is reported again.
  struct SlyPointer : MemoryPointer {
    void setWantsActivity(bool wants) override {
      if (wants && !entered) {
        entered = true;
        move(onNotch);
      }
      MemoryPointer::setWantsActivity(wants);
    }
    bool entered = false;
  };
  SlyPointer pointer;
  Stage stage(pointer);
  stage.desktop.scheduler.advance(1);
  EXPECT_TRUE(pointer.entered);
  EXPECT_TRUE(stage.model.isHovering);
}

/// Everything that a user could see or feel.
std::string seen(const Stage& stage) {
  const NotchModel& model = stage.model;
  std::ostringstream line;
  line << "hovering " << model.isHovering << ", expanded " << model.isExpanded << ", dragging "
       << model.isDraggingFiles << ", targeted " << model.isDropTargeted << ", taps "
       << stage.desktop.haptics.taps << ", resigned " << stage.panel.resignations << ", area ";
  if (const auto& area = stage.panel.pointerArea)
    line << area->x << " " << area->y << " " << area->width << " " << area->height;
  return line.str();
}

TEST(PointerTrackerTwins, SleepingMakesNoDifference) {
  std::mt19937 random(20261122);
  const auto below = [&](int count) { return static_cast<int>(random() % count); };
  const auto between = [&](double from, double to) {
    return std::uniform_real_distribution(from, to)(random);
  };
  using Event = std::function<void(Stage&)>;
  const Event events[] = {
      [](Stage& s) { s.desktop.pointer.move(std::nullopt); },
      [](Stage& s) { s.desktop.pointer.press(); },
      [](Stage& s) { s.desktop.pointer.release(); },
      [](Stage& s) { s.desktop.pointer.startDrag(files); },
      [](Stage& s) { s.desktop.pointer.startDrag(text); },
      [](Stage& s) { s.desktop.pointer.startDrag(std::nullopt); },
      [](Stage& s) { s.desktop.pointer.tellDragTypes(files); },
      [](Stage& s) { s.model.show(Transient::lowPowerMode(true), 0.3); },
      [](Stage& s) { s.model.present({.title = "b"}, 0.7); },
      [](Stage& s) { s.model.expand(); },
      [](Stage& s) { s.model.collapse(); },
      [](Stage& s) { s.model.settings.expandOnHover = true; },
      [](Stage& s) { s.model.settings.expandOnHover = false; },
      [](Stage& s) { s.model.settings.comesAtEdge = !s.model.settings.comesAtEdge; },
      [](Stage& s) {
        s.model.claude.handle({{"hook_event_name", "PreToolUse"}});
      },
      [](Stage& s) {
        s.model.claude.handle({{"hook_event_name", "Stop"}});
      },
      [](Stage& s) { s.model.setDraggingFiles(true), s.model.isDropTargeted = true; },
      [](Stage& s) { s.model.setDraggingFiles(false), s.model.isDropTargeted = false; },
      [](Stage& s) { s.model.showcase = true, s.tracker.wake(); },
      [](Stage& s) { s.model.showcase = false, s.tracker.wake(); },
      [](Stage& s) { s.panel.key = true; },
  };
  for (int run = 0; run < 100; ++run) {
    // One of the two is woken at every tick, whether or not something has happened.
    Stage sleepy, wakeful;
    sleepy.model.hasNotch = wakeful.model.hasNotch = run % 2 == 0;
    const Task alarm = wakeful.desktop.scheduler.every(tick, [&] { wakeful.desktop.pointer.report(); });
    for (int step = 0; step < 300; ++step) {
      // Half of the time the pointer moves, mostly about the edges that matter.
      const Point to{470 + between(-1, 1) * (below(2) ? 130 : 560), between(-6, below(2) ? 50 : 400)};
      const Event event =
          below(2) ? events[below(std::size(events))] : [&](Stage& s) { s.desktop.pointer.move(to); };
      event(sleepy);
      event(wakeful);
      const double pause = between(0, below(3) ? 0.05 : 0.6);
      sleepy.desktop.scheduler.advance(pause);
      wakeful.desktop.scheduler.advance(pause);
      ASSERT_EQ(seen(sleepy), seen(wakeful)) << "run " << run << ", step " << step;
    }
    EXPECT_LT(sleepy.desktop.scheduler.wakeUps(), wakeful.desktop.scheduler.wakeUps()) << "it did sleep";
  }
}

}  // namespace
}  // namespace tarnwick
