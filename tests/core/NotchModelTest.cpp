#include "core/NotchModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;

Banner banner(std::string title, std::optional<CrabMood> crab = {}) {
  return {.title = std::move(title), .crab = crab};
}
Transient volume(double level) { return Transient::hud(HUDKind::volume, level); }
const Transient mute = Transient::hud(HUDKind::mute, 0);
const Transient brightness = Transient::hud(HUDKind::brightness, 0.5);
const Transient headphones = Transient::device("Headphones", "headphones", 80, true);

class NotchModelTest : public testing::Test {
 protected:
  void pass(double seconds) { desktop.scheduler.advance(seconds); }
  void sessionIs(const char* event) { model.claude.handle({{"hook_event_name", event}}); }
  void play() {
    model.media.title = "Song";
    model.media.playing = true;
  }
  /// The animations of the model's changes since the last call; a spring without response: none.
  std::vector<Animation> animations() { return std::exchange(animations_, {}); }

  MemoryDesktop desktop;
  NotchModel model{desktop.ports};

 private:
  std::vector<Animation> animations_;
  Subscription subscription_ =
      model.observe([this] { animations_.push_back(transaction::current().value_or(spring(0, 0))); });
};

const Animation none = spring(0, 0);

TEST_F(NotchModelTest, WhatWantsToBeSeenFirstIsShown) {
  // Each step puts something on show that goes before all that is there already.
  EXPECT_EQ(model.presentation(), Presentation::idle);
  model.media.playing = true;
  EXPECT_EQ(model.presentation(), Presentation::idle) << "playing nothing";
  play();
  EXPECT_EQ(model.presentation(), Presentation::nowPlaying);
  sessionIs("PreToolUse");
  EXPECT_EQ(model.presentation(), Presentation::claude);
  model.hiddenForFullscreen = true;
  EXPECT_EQ(model.presentation(), Presentation::idle);
  model.show(mute, 1);
  EXPECT_EQ(model.presentation(), Presentation::transient);
  model.present(banner("b"), 1);
  EXPECT_EQ(model.presentation(), Presentation::banner);
  model.setDraggingFiles(true);
  EXPECT_EQ(model.presentation(), Presentation::expanded);
  model.setDraggingFiles(false);
  EXPECT_EQ(model.presentation(), Presentation::banner);
  model.expand();
  EXPECT_EQ(model.presentation(), Presentation::expanded);
}

TEST_F(NotchModelTest, SettingsTakePartInTheChoice) {
  play();
  model.settings.showNowPlaying = false;
  EXPECT_EQ(model.presentation(), Presentation::idle);
  sessionIs("Stop");
  model.dismissBanner();
  EXPECT_EQ(model.presentation(), Presentation::idle) << "done is not working";
  sessionIs("PreToolUse");
  EXPECT_EQ(model.presentation(), Presentation::claude);
  model.hiddenForFullscreen = true;
  model.settings.hideInFullscreen = false;
  EXPECT_EQ(model.presentation(), Presentation::claude);
  sessionIs("Notification");
  model.dismissBanner();
  EXPECT_EQ(model.presentation(), Presentation::claude) << "waiting";
}

TEST_F(NotchModelTest, SizeOfTheSurface) {
  const struct {
    double notchWidth;
    Size size, hovered;
    std::function<void(NotchModel&)> stage;
  } cases[] = {
      {188, {200, 32}, {218, 37}, [](NotchModel&) {}},
      {188, {288, 32}, {306, 37}, [](NotchModel& m) { m.media.title = "a", m.media.playing = true; }},
      {188, {408, 32}, {426, 37}, [](NotchModel& m) { m.show(volume(1), 1); }},
      {188, {392, 32}, {410, 37}, [](NotchModel& m) { m.show(Transient::power(true, 76), 1); }},
      {188, {448, 32}, {466, 37}, [](NotchModel& m) { m.show(headphones, 1); }},
      {200, {400, 92}, {418, 97}, [](NotchModel& m) { m.present(banner("b"), 1); }},
      {248, {440, 92}, {458, 97}, [](NotchModel& m) { m.present(banner("b"), 1); }},
      {188, {560, 170}, {560, 170}, [](NotchModel& m) { m.expand(); }},
      {288, {640, 170}, {640, 170}, [](NotchModel& m) { m.setDraggingFiles(true); }},
  };
  for (const auto& c : cases) {
    NotchModel fresh(desktop.ports);
    fresh.notchSize = {c.notchWidth, 32};
    c.stage(fresh);
    EXPECT_EQ(fresh.size(), c.size);
    fresh.setHovering(true);
    EXPECT_EQ(fresh.size(), c.hovered);
  }
}

TEST_F(NotchModelTest, ANewerTransientStartsTheTimeAgain) {
  model.show(volume(0.4), 1.5);
  pass(0.5);
  model.show(volume(0.5), 1.5);
  pass(1.49);
  EXPECT_EQ(*model.transient, volume(0.5));
  animations();
  pass(0.02);
  EXPECT_EQ(*model.transient, std::nullopt);
  pass(10);
  EXPECT_THAT(animations(), ElementsAre(notchClose)) << "removed exactly once";

  model.show(mute, 1);
  pass(0.9);
  model.show(mute, 1);
  pass(0.9);
  EXPECT_EQ(*model.transient, mute) << "the same indicator again also lasts its full time";
}

TEST_F(NotchModelTest, TransientsOfOneKindAreUpdatedInPlace) {
  constexpr Animation inPlace = spring(0.25, 0.85);
  const struct {
    Transient next;
    Animation animation;
    const char* key;
  } steps[] = {
      {volume(0.4), notchOpen, "volume"},
      {volume(0.5), inPlace, "volume"},
      {mute, inPlace, "volume"},
      {brightness, notchOpen, "brightness"},
      {Transient::power(true, 50), notchOpen, "power"},
      {Transient::power(false, 50), inPlace, "power"},
      {Transient::lowPowerMode(true), notchOpen, "lowpower"},
      {Transient::lowPowerMode(false), inPlace, "lowpower"},
      {headphones, notchOpen, "device-Headphones-true"},
      {Transient::device("Mouse", "mouse", {}, false), inPlace, "device-Mouse-false"},
      {volume(0), notchOpen, "volume"},
  };
  for (const auto& step : steps) {
    model.show(step.next, 1);
    EXPECT_THAT(animations(), ElementsAre(step.animation)) << step.key;
    EXPECT_EQ(model.transient.get()->key(), step.key);
  }
}

TEST_F(NotchModelTest, NoTransientOverTheOpenBody) {
  model.show(volume(0.4), 1.5);
  model.expand();
  EXPECT_EQ(*model.transient, std::nullopt);
  model.show(mute, 1);
  model.collapse();
  EXPECT_EQ(model.presentation(), Presentation::idle);
  model.show(brightness, 5);
  pass(2);
  EXPECT_EQ(*model.transient, brightness) << "the end of the first indicator's time does not end this one";
}

TEST_F(NotchModelTest, BannersReplaceEachOtherAndWaitBehindTheOpenBody) {
  model.present(banner("first"), 8);
  pass(7);
  model.present(banner("second"), 5);
  pass(4.99);
  EXPECT_EQ(model.banner.get()->title, "second");
  pass(0.02);
  EXPECT_EQ(*model.banner, std::nullopt);
  EXPECT_THAT(animations(), ElementsAre(notchOpen, notchOpen, notchClose));

  model.present(banner("third"), 5);
  model.dismissBanner();
  EXPECT_EQ(*model.banner, std::nullopt);
  EXPECT_THAT(animations(), ElementsAre(notchOpen, notchClose));
  pass(4);
  model.present(banner("fourth"), 5);
  pass(4);
  EXPECT_NE(*model.banner, std::nullopt) << "the dismissed banner's time does not end this one";

  model.expand();
  model.present(banner("fifth"), 5);
  EXPECT_EQ(model.presentation(), Presentation::expanded);
  pass(4);
  model.collapse();
  EXPECT_EQ(model.presentation(), Presentation::banner) << "it waited behind the open body";
  pass(1);
  EXPECT_EQ(model.presentation(), Presentation::idle);
}

TEST_F(NotchModelTest, ExpandingOpensTheTabThatIsWanted) {
  const struct {
    std::optional<Banner> shown;
    bool waiting;
    std::optional<Tab> asked;
    Tab opened;
  } cases[] = {
      {{}, false, {}, Tab::audio},
      {{}, false, Tab::notes, Tab::notes},
      {banner("low battery"), false, {}, Tab::audio},
      {banner("done", CrabMood::happy), false, {}, Tab::claude},
      {banner("done", CrabMood::happy), false, Tab::tray, Tab::tray},
      {{}, true, {}, Tab::claude},
      {{}, true, Tab::home, Tab::home},
  };
  for (const auto& c : cases) {
    NotchModel fresh(desktop.ports);
    fresh.tab = Tab::audio;
    if (c.waiting) fresh.claude.sessions = {{"s", Session{.id = "s", .phase = Phase::waiting}}};
    if (c.shown) fresh.present(*c.shown, 5);
    fresh.expand(c.asked);
    EXPECT_EQ(fresh.tab, c.opened);
    EXPECT_EQ(fresh.tabDirection, 1);
    EXPECT_TRUE(fresh.isExpanded);
    EXPECT_EQ(*fresh.banner, std::nullopt);
  }
}

TEST_F(NotchModelTest, TabsSlideTheWayTheyLie) {
  constexpr Animation slide = spring(0.38, 0.82);
  model.select(Tab::home);
  EXPECT_THAT(animations(), ElementsAre());
  model.select(Tab::notes);
  EXPECT_EQ(model.tabDirection, 1);
  EXPECT_THAT(animations(), ElementsAre(slide));
  model.select(Tab::tray);
  EXPECT_EQ(model.tabDirection, -1);
  EXPECT_THAT(animations(), ElementsAre(none, slide)) << "the direction is known before the page leaves";
  model.select(Tab::home);
  EXPECT_EQ(model.tabDirection, -1);
  EXPECT_EQ(model.tab, Tab::home);
}

TEST_F(NotchModelTest, StateChangesAreAnimatedAndOnlyChangesAre) {
  const struct {
    const char* what;
    std::function<void()> change;
    Animation animation;
  } cases[] = {
      {"expand", [&] { model.expand(); }, notchOpen},
      {"collapse", [&] { model.collapse(); }, notchClose},
      {"hover", [&] { model.setHovering(true); }, notchHover},
      {"leave", [&] { model.setHovering(false); }, notchHover},
      {"drag", [&] { model.setDraggingFiles(true); }, notchOpen},
      {"drop", [&] { model.setDraggingFiles(false); }, notchClose},
      {"stage", [&] { model.debugSet(false, Tab::tray, false); }, none},
  };
  for (const auto& c : cases) {
    c.change();
    EXPECT_THAT(animations(), ElementsAre(c.animation)) << c.what;
    c.change();
    EXPECT_THAT(animations(), ElementsAre()) << c.what << " again";
  }
}

TEST_F(NotchModelTest, ServicesReportToTheModel) {
  model.power.onTransient(Transient::power(true, 50));
  pass(1.79);
  EXPECT_EQ(model.presentation(), Presentation::transient);
  pass(0.02);
  EXPECT_EQ(model.presentation(), Presentation::idle);
  const struct {
    std::function<void(const Banner&, double)>& onBanner;
  } services[] = {{model.claude.onBanner}, {model.power.onBanner}, {model.calendar.onBanner}};
  for (const auto& service : services) {
    service.onBanner(banner("b"), 3);
    pass(2.9);
    EXPECT_EQ(model.presentation(), Presentation::banner);
    pass(0.2);
    EXPECT_EQ(model.presentation(), Presentation::idle);
  }
  model.settings.claudeSounds = false;
  sessionIs("Stop");
  EXPECT_TRUE(desktop.sounds.played.empty()) << "the tracker reads the model's settings";
}

}  // namespace
}  // namespace tarnwick
