#include "services/PowerService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "support/ForcedLanguage.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PowerServiceTest : public testing::Test {
 protected:
  PowerServiceTest() {
    power.onTransient = [this](const Transient& transient) { transients.push_back(transient); };
    power.onBanner = [this](const Banner& banner, double seconds) {
      EXPECT_EQ(
          banner, (Banner{banner.id, "battery.25percent", colors::red, banner.title, banner.subtitle, {}}));
      EXPECT_EQ(seconds, 5);
      banners.push_back(banner.title + ": " + banner.subtitle);
    };
  }

  static PowerSource battery(double percent, bool plugged) {
    return {
        .isInternalBattery = true, .currentCapacity = percent, .onACPower = plugged, .isCharging = plugged};
  }
  void set(double percent, bool plugged) { desktop.powerSources.set({{battery(percent, plugged)}}); }
  void start(double percent, bool plugged = false) {
    set(percent, plugged);
    power.start(settings);
  }
  /// @return the banners that these levels, one after the other without the charger, bring up
  std::vector<std::string> fall(std::initializer_list<double> levels) {
    banners.clear();
    for (const double level : levels) set(level, false);
    return banners;
  }

  const ForcedLanguage english{"en"};
  MemoryDesktop desktop;
  AppSettings settings{desktop.defaults};
  PowerService power{desktop.powerSources, desktop.sounds};
  std::vector<Transient> transients;
  std::vector<std::string> banners;
};

TEST_F(PowerServiceTest, WarnsOnceAtEachThreshold) {
  start(25);
  EXPECT_THAT(fall({21, 19}), ElementsAre("Low battery: 19% left"));
  EXPECT_THAT(fall({15, 11}), IsEmpty());
  EXPECT_THAT(fall({25, 18}), IsEmpty()) << "risen without the charger and fallen again";
  EXPECT_THAT(fall({10}), ElementsAre("Low battery: 10% left"));
  EXPECT_THAT(desktop.sounds.played, ElementsAre(Sound::batteryLow, Sound::batteryLow));

  set(30, true);
  set(25, false);
  const ForcedLanguage french("fr");
  EXPECT_THAT(fall({8}), ElementsAre("Batterie faible: 8% restants", "Batterie faible: 8% restants"));
}

TEST_F(PowerServiceTest, TellsOfTheChargerAndTheLowPowerMode) {
  start(80);
  set(80, true);
  set(81, true);
  set(81, false);
  desktop.powerSources.set(std::nullopt);
  EXPECT_TRUE(power.hasBattery) << "the daemon is away";
  EXPECT_EQ(power.level, 81);
  set(81, true);
  desktop.powerSources.setLowPowerMode(true);
  desktop.powerSources.setLowPowerMode(false);
  EXPECT_THAT(transients,
      ElementsAre(Transient::power(true, 80), Transient::power(false, 81), Transient::power(true, 81),
          Transient::lowPowerMode(true), Transient::lowPowerMode(false)));
  EXPECT_THAT(desktop.sounds.played, ElementsAre(Sound::powerPlug, Sound::powerPlug));
  EXPECT_THAT(banners, IsEmpty());
}

TEST_F(PowerServiceTest, IsSilentAboutTheStateAtTheStart) {
  const struct {
    double level;
    bool plugged;
    bool known;  // when the service starts
  } cases[] = {{5, false, true}, {5, false, false}, {50, true, true}, {50, true, false}};
  for (const auto& [level, plugged, known] : cases) {
    PowerService fresh(desktop.powerSources, desktop.sounds);
    fresh.onTransient = power.onTransient;
    fresh.onBanner = power.onBanner;
    desktop.powerSources.set(std::nullopt);
    if (known) set(level, plugged);
    fresh.start(settings);
    EXPECT_EQ(fresh.hasBattery, known);
    if (!known) set(level, plugged);
    EXPECT_TRUE(fresh.hasBattery);
    EXPECT_EQ(fresh.level, level);
    EXPECT_EQ(fresh.pluggedIn, plugged);
    EXPECT_EQ(fresh.charging, plugged);
    EXPECT_THAT(transients, IsEmpty());
    EXPECT_THAT(banners, IsEmpty());
    EXPECT_THAT(desktop.sounds.played, IsEmpty());
  }
}

TEST_F(PowerServiceTest, WithoutAlertsItOnlyKeepsCount) {
  start(50);
  settings.batteryAlerts = false;
  EXPECT_THAT(fall({19}), IsEmpty());
  set(19, true);
  set(25, false);
  EXPECT_THAT(fall({15}), IsEmpty());
  desktop.powerSources.setLowPowerMode(true);
  EXPECT_THAT(transients, IsEmpty());
  EXPECT_THAT(desktop.sounds.played, IsEmpty());

  settings.batteryAlerts = true;
  EXPECT_THAT(fall({22, 14}), IsEmpty()) << "the threshold was passed meanwhile";
  EXPECT_THAT(fall({9}), ElementsAre("Low battery: 9% left"));
}

TEST_F(PowerServiceTest, ComputesTheLevel) {
  const struct {
    double current, maximum;
    int level;
  } cases[] = {{50, 100, 50}, {19.99, 100, 19}, {30, 60, 50}, {42, 0, 42}, {42, -1, 42}, {0, 100, 0},
      {NAN, 100, 0}, {50, NAN, 50}, {1e9, 100, 100}, {-5, 100, 0}, {INFINITY, 100, 100}};
  power.start(settings);
  for (const auto& [current, maximum, level] : cases) {
    desktop.powerSources.set({{{.isInternalBattery = true,
        .currentCapacity = current,
        .maxCapacity = maximum,
        .onACPower = true}}});
    EXPECT_EQ(power.level, level) << current << " of " << maximum;
  }
  PowerSource mouse = battery(5, false);
  mouse.isInternalBattery = false;
  int notifications = 0;
  const auto subscription = power.observe([&] { ++notifications; });
  for (int i = 0; i < 200; ++i) desktop.powerSources.set({{mouse, battery(70 + i / 1000.0, true), mouse}});
  EXPECT_EQ(power.level, 70) << "the machine's own battery";
  EXPECT_EQ(notifications, 2) << "level and charging, once each";
}

}  // namespace
}  // namespace tarnwick
