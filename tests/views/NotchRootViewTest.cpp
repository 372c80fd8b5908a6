#include "views/NotchRootView.h"

#include <gmock/gmock.h>

#include "support/ForcedLanguage.h"
#include "views/NotchShape.h"
#include "views/NotchStage.h"

namespace tarnwick {
namespace {

using testing::Contains;
using testing::ElementsAre;

void work(NotchStage& stage) { stage.hook("a", "UserPromptSubmit", {{"cwd", "/x/shop"}}); }

void playMusic(NotchStage& stage) {
  stage.model.media.title = "Song";
  stage.model.media.playing = true;
}

Banner banner(std::optional<CrabMood> crab = {}) {
  return {
      .icon = "calendar", .tint = colors::blue, .title = "Review", .subtitle = "Starts soon", .crab = crab};
}

struct Scene {
  const char* name;
  std::function<void(NotchStage&)> prepare;
  Size size;
  double radius;
};

const Scene scenes[] = {
    {"idle", [](NotchStage&) {}, {197, 32}, 10},
    {"hovered", [](NotchStage& s) { s.model.setHovering(true); }, {215, 37}, 13},
    {"claude", work, {285, 32}, 10},
    {"now playing", playMusic, {285, 32}, 10},
    {"volume", [](NotchStage& s) { s.model.show(Transient::hud(HUDKind::volume, 1), 9); }, {405, 32}, 10},
    {"banner", [](NotchStage& s) { s.model.present(banner(), 9); }, {400, 92}, 22},
    {"expanded", [](NotchStage& s) { s.model.expand(); }, {560, 170}, 26},
    {"files",
        [](NotchStage& s) {
          s.model.setDraggingFiles(true);
          s.model.setHovering(true);
        },
        {560, 170}, 26},
};

TEST(NotchRootView, HangsTheSurfaceFromTheMiddleOfTheTopEdge) {
  for (const Scene& scene : scenes) {
    for (const bool hasNotch : {true, false}) {
      SCOPED_TRACE(scene.name);
      NotchStage stage;
      stage.model.hasNotch = hasNotch;
      scene.prepare(stage);
      stage.settle();
      const Rect surface = *stage.scene.presentedFrame(surfaceId);
      EXPECT_NEAR(surface.midX(), 470, 1);
      EXPECT_EQ(surface.y, 0);
      EXPECT_NEAR(surface.width, scene.size.width, 1e-6);
      EXPECT_NEAR(surface.height, scene.size.height, 1e-6);
      const auto clip = stage.scene.presentedClip(surfaceId);
      ASSERT_TRUE(clip);
      EXPECT_THAT(clip->animated, ElementsAre(scene.radius));
      EXPECT_THAT(clip->fixed, ElementsAre(notchFlare));
      const bool invisible = !hasNotch && std::string("idle") == scene.name;
      EXPECT_EQ(stage.inspect.id(surfaceId)->opacity(), invisible ? 0 : 1);
      EXPECT_EQ(stage.scene.isVisible(surfaceId), !invisible);
    }
  }
}

TEST(NotchRootView, ExpandsByATapOnTheSurfaceButNotTwice) {
  NotchStage stage;
  for (const Point outside : {Point{300, 10}, Point{470, 40}, Point{372.5, 31.5}}) {
    stage.inspect.tap(outside);
    EXPECT_FALSE(stage.model.isExpanded) << outside.x << ", " << outside.y;
  }
  stage.inspect.tap(Point{470, 10});
  stage.settle();
  EXPECT_TRUE(stage.model.isExpanded);

  stage.model.tab = Tab::home;
  // With a session waiting, another expansion would change the tab.
  stage.hook("w", "Notification", {{"message", "Hello"}});
  stage.inspect.tap(Point{470, 150});
  stage.settle();
  EXPECT_EQ(stage.model.tab, Tab::home);
}

TEST(NotchRootView, GlowsWithMusicAndBanners) {
  const auto glows = [](NotchStage& stage, const char* id) { return stage.inspect.id(id).has_value(); };
  NotchStage stage;
  stage.model.media.title = "Song";
  stage.model.media.accent = colors::pink;
  stage.model.expand(Tab::home);
  stage.settle();
  ASSERT_TRUE(glows(stage, "homeGlow"));
  EXPECT_EQ(stage.inspect.id("homeGlow")->color(), colors::pink.opacity(0.32));
  stage.model.setDraggingFiles(true);
  stage.settle();
  EXPECT_FALSE(glows(stage, "homeGlow"));
  stage.model.setDraggingFiles(false);
  stage.model.select(Tab::notes);
  stage.settle();
  EXPECT_FALSE(glows(stage, "homeGlow"));
  stage.model.collapse();
  stage.model.present(banner(), 9);
  stage.settle();
  ASSERT_TRUE(glows(stage, "bannerGlow"));
  EXPECT_EQ(stage.inspect.id("bannerGlow")->color(), colors::blue.opacity(0.25));
}

TEST(Banner, ShowsTheMascotOrItsIconTwiceInTheStrip) {
  for (const bool crab : {false, true}) {
    NotchStage stage;
    stage.model.present(banner(crab ? std::optional(CrabMood::happy) : std::nullopt), 9);
    stage.settle();
    EXPECT_EQ(stage.inspect.symbols().size(), crab ? 2u : 3u) << "with the badge's";
    EXPECT_EQ(stage.inspect.kind("Canvas").size(), crab ? 1u : 0u);
    EXPECT_THAT(stage.inspect.texts(), ElementsAre("Review", "Starts soon"));
  }
}

TEST(Banner, PopsItsBadgeInForEachNewOne) {
  NotchStage stage;
  const auto badgeWidth = [&] {
    for (const auto& found : stage.inspect.kind("Shape")) {
      if (found.targetFrame().width == 40) return found.frame().width;
    }
    return -1.0;
  };
  for (int round = 0; round < 2; ++round) {
    stage.model.present(banner(), 9);
    stage.play(0.05);
    EXPECT_LT(badgeWidth(), 20) << round;
    double widest = 0;
    for (int frame = 0; frame < 60; ++frame) {
      stage.play(1.0 / 60);
      widest = std::max(widest, badgeWidth());
    }
    EXPECT_GT(widest, 41) << round;
    EXPECT_NEAR(badgeWidth(), 40, 0.2) << round;
  }
}

TEST(Banner, KeepsLongTextsOnTheCard) {
  NotchStage stage;
  Banner shown = banner();
  shown.title = shown.subtitle = std::string(300, 'W');
  stage.model.present(shown, 9);
  stage.settle();
  const Rect surface = *stage.scene.presentedFrame(surfaceId);
  for (const auto& text : stage.inspect.kind("Text")) {
    EXPECT_NEAR(text.frame().right(), surface.right() - 6 - 22 - 14, 1);
  }
}

TEST(Artwork, ShowsTheBestPictureThatThereIs) {
  const auto picture = [] {
    return Image{2, 2, std::make_shared<const std::vector<uint32_t>>(4, 0xff336699)};
  };
  NotchStage stage;
  playMusic(stage);
  stage.settle();
  EXPECT_TRUE(stage.inspect.symbol("music.note"));

  stage.model.media.appIcon = picture();
  stage.settle();
  EXPECT_FALSE(stage.inspect.symbol("music.note"));
  EXPECT_NEAR(stage.inspect.kind("Image").at(0).frame().width, 22 - 2 * 0.08 * 22, 1e-6);

  stage.model.media.artwork = picture();
  stage.play(0.1);
  // One fades into the other.
  EXPECT_EQ(stage.inspect.all([](const auto& found) { return found.kind() == "Image"; }).size(), 2u);
  stage.settle();
  ASSERT_EQ(stage.inspect.kind("Image").size(), 1u);
  EXPECT_EQ(stage.inspect.kind("Image")[0].frame().size(), (Size{22, 22}));
}

TEST(NotchRootView, RenewsOnlyWhatShowsTheChange) {
  const struct {
    const char* change;
    std::function<void(NotchStage&)> before, make;
    unsigned renewals;
  } cases[] = {
      {"cover", playMusic, [](NotchStage& s) { s.model.media.artwork = Image{}; }, 1},
      {"tint", playMusic, [](NotchStage& s) { s.model.media.accent = colors::pink; }, 1},
      {"title, of which the bars read whether there is one", playMusic,
          [](NotchStage& s) { s.model.media.title = "Other"; }, 1},
      {"position", playMusic, [](NotchStage& s) { s.model.media.elapsed = 9; }, 0},
      {"media behind a session", work, playMusic, 0},
      {"what a session does", work, [](NotchStage& s) { s.hook("a", "PostToolUse"); }, 0},
      {"battery", work, [](NotchStage& s) { s.model.power.level = 9; }, 0},
  };
  for (const auto& c : cases) {
    NotchStage stage;
    c.before(stage);
    stage.settle();
    const unsigned before = stage.inspect.renewals();
    c.make(stage);
    stage.scene.frame();
    EXPECT_EQ(stage.inspect.renewals() - before, c.renewals) << c.change;
  }
}

TEST(NotchRootView, RepaintsNothingButTheWingsWhileASessionWorks) {
  NotchStage stage;
  stage.hook("one", "UserPromptSubmit");
  stage.settle();
  stage.scene.takeDamage();
  int painted = 0;
  for (int frame = 0; frame < 60; ++frame) {
    stage.play(1.0 / 60);
    for (const Rect& area : stage.scene.takeDamage()) {
      ++painted;
      EXPECT_TRUE(area.right() < 470 - 60 || area.x > 470 + 60) << area.x << " " << area.width;
      EXPECT_LT(area.width * area.height, 1000);
    }
  }
  EXPECT_GT(painted, 15);
}

TEST(NotchRootView, AQuickHandHitsTheTabsThatAreStillOnTheirWay) {
  NotchStage stage;
  const auto open = [&] {
    stage.model.collapse();
    stage.settle();
    stage.model.expand(Tab::home);
  };
  open();
  stage.settle();
  const auto middle = [&](const char* name) {
    const Rect frame = stage.inspect.control(name)->frame();
    return Point{frame.midX(), frame.midY()};
  };
  const Point notes = middle("Notes"), gear = middle("Settings");
  for (const double after : {0.02, 0.06, 0.1, 0.14, 0.2}) {
    open();
    stage.play(after);
    stage.inspect.tap(notes);
    EXPECT_EQ(stage.model.tab, Tab::notes) << after;
    open();
    stage.play(after);
    stage.inspect.tap(gear);
  }
  EXPECT_EQ(stage.settingsOpened, 5);
}

}  // namespace
}  // namespace tarnwick
