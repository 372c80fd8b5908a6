#include "core/PointerTracker.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "support/MemoryDesktop.h"
#include "support/MemoryPanel.h"

namespace tarnwick {
namespace {

constexpr double tick = 1.0 / 60;
constexpr Rect window{490, 0, 940, 380};
/// With the model's notch of 185 × 32, the surface at rest takes x from 861.5 to 1058.5 and y to 32.
constexpr Point onNotch{960, 10}, farAway{100, 900};
const std::vector<std::string> files{"text/uri-list", "text/plain"}, text{"text/plain"};

/// All that a tracker works on.
struct Stage {
  Stage() { panel.setFrame(window); }

  MemoryDesktop desktop;
  NotchModel model{desktop.ports};
  MemoryPanel panel;
  HapticFeedback haptics{model.settings, desktop.haptics};
};

class PointerTrackerTest : public testing::Test, protected Stage {
 protected:
  void pass(double seconds) { desktop.scheduler.advance(seconds); }
  void moveTo(Point point, double stay = 2 * tick) {
    desktop.pointer.move(point);
    pass(stay);
  }
  bool asleep() { return !desktop.scheduler.nextDue(); }

  PointerTracker tracker{desktop.scheduler, desktop.pointer, model, panel, haptics};
};

TEST_F(PointerTrackerTest, HoversAtTheEdgesOfTheSurface) {
  // The area at rest, three points around the surface; hovering adds nine points at each side and five below.
  const struct {
    Point point;
    bool enters, stays;
  } cases[] = {
      {{858.5, 10}, true, true},   {{858.4, 10}, false, true},  {{1061.4, 10}, true, true},
      {{1061.5, 10}, false, true}, {{849.4, 10}, false, false}, {{1070.5, 10}, false, false},
      {{960, 34.9}, true, true},   {{960, 35}, false, true},    {{960, 39.9}, false, true},
      {{960, 40}, false, false},   {{960, -5}, true, true},     {{960, -5.1}, false, false},
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

TEST_F(PointerTrackerTest, EntryIsFeltOnceAndHoverEndsSoonAfterLeaving) {
  moveTo(onNotch);
  EXPECT_TRUE(model.isHovering);
  EXPECT_EQ(desktop.haptics.taps, 1);
  moveTo({950, 12}, 1);
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
  panel.key = true;
  moveTo(onNotch);
  model.expand();
  moveTo({960, 150}, 5);
  moveTo(farAway, 0.1);
  EXPECT_TRUE(model.isExpanded);
  moveTo({960, 150}, 5);
  EXPECT_TRUE(model.isExpanded) << "it came back in time";
  EXPECT_EQ(panel.resignations, 0);
  moveTo(farAway, 0.13 + tick);
  EXPECT_FALSE(model.isExpanded);
  EXPECT_EQ(panel.resignations, 1) << "the focus goes back";

  moveTo(onNotch);
  model.expand();
  moveTo(farAway, 1);
  EXPECT_FALSE(model.isExpanded);
  EXPECT_EQ(panel.resignations, 1) << "there was no focus to give back";
}

TEST_F(PointerTrackerTest, FollowsAFileDrag) {
  desktop.pointer.press();
  pass(2 * tick);
  desktop.pointer.startDrag(files);
  // 140 and 110 points around the surface.
  moveTo({721.4, 10});
  EXPECT_FALSE(model.isDraggingFiles);
  moveTo({960, 142.1});
  EXPECT_FALSE(model.isDraggingFiles);
  EXPECT_EQ(panel.pointerArea, (Rect{721.5, -112, 477, 254})) << "the window is ready for it";
  moveTo({721.6, 10});
  EXPECT_TRUE(model.isDraggingFiles);
  EXPECT_EQ(desktop.haptics.taps, 1);
  // Now 220 and 180 points around the expanded surface of 560 × 170.
  moveTo({461, 349});
  EXPECT_TRUE(model.isDraggingFiles);
  EXPECT_EQ(panel.pointerArea, (Rect{460, -182, 1000, 532}));
  moveTo({459, 349});
  EXPECT_FALSE(model.isDraggingFiles);
  moveTo({800, 100});
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
    moveTo({960, 60}, 1);
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
  moveTo({960, 60});
  drag();
  desktop.pointer.release();
  pass(0.2);
  drag();
  const int taps = desktop.haptics.taps;
  pass(1);
  EXPECT_TRUE(model.isDraggingFiles);
  EXPECT_EQ(desktop.haptics.taps, taps);
}

TEST_F(PointerTrackerTest, TheOpenBodyStaysForADrag) {
  moveTo(onNotch);
  model.expand();
  pass(2 * tick);
  model.setDraggingFiles(true);
  moveTo(farAway, 1);
  EXPECT_TRUE(model.isExpanded);
  model.setDraggingFiles(false);
  pass(2 * tick);
  EXPECT_FALSE(model.isExpanded);
}

TEST_F(PointerTrackerTest, TakesThePointerWhereItCountsAsInside) {
  pass(1);
  EXPECT_EQ(panel.pointerArea, (Rect{858.5, -5, 203, 40}));
  const int changes = panel.pointerAreaChanges;
  moveTo({960, 300}, 1);
  model.tab = Tab::notes;
  pass(1);
  EXPECT_EQ(panel.pointerAreaChanges, changes) << "told only of changes";

  model.show(Transient::hud(HUDKind::volume, 1), 1);
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea, (Rect{754.5, -5, 411, 40})) << "a sleeping tracker follows the surface";
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
  panel.setFrame(window.movedBy({100, 50}));
  tracker.reconsider();
  pass(2 * tick);
  EXPECT_EQ(panel.pointerArea->origin(), (Point{858.5 - 44 + 100, 45}));
}

TEST_F(PointerTrackerTest, LeavesTheDemonstrationAlone) {
  model.showcase = true;
  tracker.reconsider();
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
  tracker.reconsider();
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
  Stage stage;
  SlyPointer pointer;
  const PointerTracker tracker(stage.desktop.scheduler, pointer, stage.model, stage.panel, stage.haptics);
  stage.desktop.scheduler.advance(1);
  EXPECT_TRUE(pointer.entered);
  EXPECT_TRUE(stage.model.isHovering);
}

/// The plain tracker, which looks sixty times a second whatever happens.
class WakefulTracker {
 public:
  explicit WakefulTracker(Stage& stage) : stage_(stage) {
    stage_.panel.setPointerArea(std::nullopt);
    next();
  }

 private:
  void next() {
    VirtualScheduler& scheduler = stage_.desktop.scheduler;
    const double at = ++ticks_ / 60.0;
    task_ = scheduler.after(at - scheduler.uptime(), [this] {
      look();
      next();
    });
  }

  Rect surface() const {
    const Size size = stage_.model.size();
    const Rect frame = stage_.panel.frame();
    return {frame.midX() - size.width / 2, frame.y - 2, size.width, size.height + 2};
  }

  void look() {
    NotchModel& model = stage_.model;
    if (model.showcase) return stage_.panel.setPointerArea(std::nullopt);
    const MemoryPointer& pointer = stage_.desktop.pointer;
    const auto position = pointer.position();
    const bool down = pointer.leftButtonDown();
    const double now = stage_.desktop.scheduler.uptime();
    const Rect before = surface();
    const auto in = [&](double dx, double dy) {
      return position && before.grownBy(dx, dy).contains(*position);
    };
    const bool inside = in(3, 3);

    bool dragging = false;
    if (!down) {
      if (wasDown_ && model.isDraggingFiles) {
        cleanUp_ = stage_.desktop.scheduler.after(0.4, [&model] {
          model.isDropTargeted = false;
          model.setDraggingFiles(false);
        });
      }
    } else {
      if (!wasDown_) dragCount_ = pointer.dragChangeCount();
      const auto types = pointer.dragTypes();
      dragging = pointer.dragChangeCount() != dragCount_ && types == files;
      if (dragging) {
        cleanUp_.cancel();
        if (in(140, 110) && !model.isDraggingFiles) {
          model.setDraggingFiles(true);
          stage_.haptics.tap();
        }
        if (model.isDraggingFiles && !in(220, 180)) model.setDraggingFiles(false);
      }
    }
    wasDown_ = down;

    if (!inside) {
      entered_.reset();
      if (now - lastInside_ > 0.04) model.setHovering(false);
      if (model.isExpanded && now - lastInside_ > 0.12 && !model.isDraggingFiles) {
        model.collapse();
        if (stage_.panel.isKey()) stage_.panel.resignKey();
      }
    } else {
      lastInside_ = now;
      if (!entered_) {
        entered_ = now;
        if (!model.isExpanded && !model.isDraggingFiles) stage_.haptics.tap();
      }
      model.setHovering(true);
      if (model.settings.expandOnHover && !model.isExpanded && !down && now - *entered_ > 0.3 - 1e-6) {
        model.expand();
      }
    }
    const Rect after = surface();
    stage_.panel.setPointerArea(model.isDraggingFiles ? after.grownBy(220, 180)
                                : dragging            ? after.grownBy(140, 110)
                                                      : after.grownBy(3, 3));
  }

  Stage& stage_;
  int ticks_ = 0;
  double lastInside_ = -1e9;
  std::optional<double> entered_;
  bool wasDown_ = false;
  int dragCount_ = 0;
  Task task_, cleanUp_;
};

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

  const auto randomEvent = [&]() -> Event {
    switch (below(16)) {
      case 0:
        return [](Stage& s) { s.desktop.pointer.move(std::nullopt); };
      case 1:
        return [](Stage& s) { s.desktop.pointer.press(); };
      case 2:
        return [](Stage& s) { s.desktop.pointer.release(); };
      case 3:
        return [types = below(3) ? files : text](Stage& s) { s.desktop.pointer.startDrag(types); };
      case 4:
        return [](Stage& s) { s.desktop.pointer.startDrag(std::nullopt); };
      case 5:
        return [](Stage& s) { s.desktop.pointer.tellDragTypes(files); };
      case 6:
        return
            [seconds = between(0.1, 1)](Stage& s) { s.model.show(Transient::lowPowerMode(true), seconds); };
      case 7:
        return [seconds = between(0.1, 1)](Stage& s) { s.model.present({.title = "b"}, seconds); };
      case 8:
        return [on = below(2) == 1](Stage& s) {
          if (on)
            s.model.expand();
          else
            s.model.collapse();
        };
      case 9:
        return [on = below(2) == 1](Stage& s) { s.model.settings.expandOnHover = on; };
      case 10:
        return [name = below(2) ? "PreToolUse" : "Stop"](Stage& s) {
          s.model.claude.handle({{"hook_event_name", name}});
        };
      case 11:
        return [on = below(2) == 1](Stage& s) { s.model.setDraggingFiles(on), s.model.isDropTargeted = on; };
      case 12:
        return [on = below(4) == 0](Stage& s) { s.model.showcase = on; };
      case 13:
        return [x = between(-60, 60)](Stage& s) {
          s.panel.setFrame(window.movedBy({x, 0})), s.panel.key = true;
        };
      // The rest moves the pointer, mostly about the edges that matter.
      default:
        return [to = Point{960 + between(-1, 1) * (below(2) ? 130 : 560), between(-6, below(2) ? 50 : 400)}](
                   Stage& s) { s.desktop.pointer.move(to); };
    }
  };

  for (int run = 0; run < 100; ++run) {
    Stage sleepy, wakeful;
    PointerTracker tracker(sleepy.desktop.scheduler, sleepy.desktop.pointer, sleepy.model, sleepy.panel,
                           sleepy.haptics);
    const WakefulTracker reference(wakeful);
    for (int step = 0; step < 300; ++step) {
      const Event event = randomEvent();
      event(sleepy);
      tracker.reconsider();
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
