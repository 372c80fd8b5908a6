#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <optional>

#include "settings/SettingsWindow.h"
#include "support/ForcedLanguage.h"
#include "support/MemoryDesktop.h"
#include "support/MemoryShortcuts.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;

struct MemoryLoginItem : LoginItem {
  bool isEnabled() const override { return enabled; }
  void setEnabled(bool wanted) override { enabled = wanted && !isBroken; }
  bool enabled = false, isBroken = false;
};

struct MemorySettingsPages : SettingsPages {
  bool has(SettingsPage) const override { return areThere; }
  void open(SettingsPage page) override { opened.push_back(page); }
  bool areThere = true;
  std::vector<SettingsPage> opened;
};

struct MemoryHookSetup : HookSetup {
  bool isInstalled() const override { return installed; }
  void setInstalled(bool wanted, std::function<void(const std::string&)> then) override {
    finish = [this, wanted, then = std::move(then)](const std::string& problem) {
      if (problem.empty()) installed = wanted;
      then(problem);
    };
  }
  bool installed = false;
  std::function<void(const std::string& problem)> finish;
};

class SettingsTest : public testing::Test {
 protected:
  QWidget* window() const {
    QWidget* found = nullptr;
    for (QWidget* each : QApplication::topLevelWidgets()) {
      if (!each->isVisible()) continue;
      EXPECT_FALSE(found) << "one window";
      found = each;
    }
    return found;
  }
  void open() {
    settings.show(QGuiApplication::primaryScreen());
    ASSERT_TRUE(window());
  }
  void close() {
    window()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  template<typename Control>
  Control* find(const char* text) const {
    for (auto* each : window()->findChildren<Control*>()) {
      if (each->text() == text && each->isVisible()) return each;
    }
    return nullptr;
  }
  void press(const char* button) {
    auto* found = find<QPushButton>(button);
    ASSERT_TRUE(found) << button;
    found->click();
  }

  MemoryDesktop desktop;
  NotchModel model{desktop.ports};
  HUDService hud{model, desktop.ports};
  MemoryLoginItem loginItem;
  MemorySettingsPages pages;
  MemoryHookSetup hooks;
  int quits = 0;
  MemoryShortcuts keys;
  ShortcutService shortcuts{model.settings, keys, {}};
  SettingsWindow settings{{model, hud, shortcuts, loginItem, pages, hooks, desktop.appearance,
      desktop.scheduler, false, [this] { ++quits; }}};
};

TEST_F(SettingsTest, EachSwitchIsItsPreference) {
  AppSettings& all = model.settings;
  const struct {
    const char *english, *french, *key;
    AppSettings::Flag& flag;
  } rows[] = {
      {"Open on hover", "Ouvrir au survol", "expandOnHover.v2", all.expandOnHover},
      {"Hide in full screen", "Masquer en plein écran", "hideInFullscreen", all.hideInFullscreen},
      {"Now Playing", "Lecture en cours", "showNowPlaying", all.showNowPlaying},
      {"Battery and Low Power Mode", "Batterie et mode économie d'énergie", "batteryAlerts",
          all.batteryAlerts},
      {"Bluetooth devices", "Appareils Bluetooth", "bluetoothAlerts", all.bluetoothAlerts},
      {"Calendar", "Calendrier", "calendarEnabled", all.calendarEnabled},
      {"Replace system HUDs", "Remplacer les HUD système", "replaceHUD", all.replaceHUD},
      {"Notification sounds", "Sons de notification", "claudeSounds", all.claudeSounds},
      {"Answer permissions here", "Répondre aux permissions ici", "answerPermissions", all.answerPermissions},
  };
  for (const bool french : {false, true}) {
    const ForcedLanguage language(french ? "fr" : "en");
    open();
    EXPECT_EQ(window()->windowTitle(), french ? "Réglages Tarnwick" : "Tarnwick Settings");
    for (const auto& row : rows) {
      auto* toggle = find<QCheckBox>(french ? row.french : row.english);
      ASSERT_TRUE(toggle) << row.english;
      const bool before = row.flag;
      EXPECT_EQ(toggle->isChecked(), before) << row.english;
      toggle->click();
      EXPECT_EQ(row.flag, !before) << row.english;
      EXPECT_EQ(desktop.defaults.boolean(row.key), !before) << row.english;
      row.flag = before;
      EXPECT_EQ(toggle->isChecked(), before) << "changed elsewhere";
    }
    close();
  }
}

TEST_F(SettingsTest, ThereIsOneWindowThatEndsNothing) {
  open();
  open();
  close();
  EXPECT_FALSE(window());
  EXPECT_EQ(quits, 0);
  desktop.scheduler.advance(5);
  const ForcedLanguage language("fr");
  open();
  press("Quitter Tarnwick");
  EXPECT_EQ(quits, 1);
}

TEST_F(SettingsTest, LooksAsTheDesktopIsSet) {
  open();
  const auto lightness = [this] { return window()->grab().toImage().pixelColor(4, 200).lightness(); };
  EXPECT_GT(lightness(), 200);
  desktop.appearance.prefersDark = true;
  EXPECT_LT(lightness(), 60);
  desktop.appearance.accentColor = Color{1, 0, 0.5};
  EXPECT_EQ(find<QCheckBox>("Calendar")->palette().color(QPalette::Highlight), QColor::fromRgbF(1, 0, 0.5));
  EXPECT_EQ(find<QCheckBox>("Calendar")->font().family(), "Inter");
}

TEST_F(SettingsTest, TheLoginItemShowsWhatIsTrue) {
  loginItem.enabled = true;
  open();
  auto* toggle = find<QCheckBox>("Open at login");
  EXPECT_TRUE(toggle->isChecked());
  toggle->click();
  EXPECT_FALSE(loginItem.enabled);
  loginItem.isBroken = true;
  toggle->click();
  EXPECT_FALSE(toggle->isChecked()) << "it could not be switched on";
}

TEST_F(SettingsTest, OffersAccessToTheCalendarWhileThatIsMissing) {
  const auto hasAdvice = [this] {
    const auto labels = window()->findChildren<QLabel*>();
    return std::ranges::any_of(labels, [](const QLabel* each) {
      return each->isVisible() && each->text().contains("Evolution Data Server");
    });
  };
  for (const bool hasPage : {true, false}) {
    pages.areThere = hasPage;
    open();
    const auto isOffered = [&] {
      EXPECT_EQ(hasAdvice(), !hasPage && model.settings.calendarEnabled && !model.calendar.authorized);
      return find<QPushButton>("Allow calendar access…") != nullptr;
    };
    EXPECT_EQ(isOffered(), hasPage);
    model.settings.calendarEnabled = false;
    EXPECT_FALSE(isOffered());
    model.settings.calendarEnabled = true;
    model.calendar.authorized = true;
    EXPECT_FALSE(isOffered());
    model.calendar.authorized = false;
    if (hasPage) press("Allow calendar access…");
    close();
  }
  EXPECT_THAT(pages.opened, ElementsAre(SettingsPage::calendars));
}

TEST_F(SettingsTest, TheKeysAreTakenOverOnceTheyAreFree) {
  model.settings.replaceHUD = false;
  desktop.mediaKeys.trusted = false;
  open();
  EXPECT_FALSE(find<QLabel>("✓ Allowed"));
  find<QCheckBox>("Replace system HUDs")->click();
  EXPECT_EQ(desktop.mediaKeys.requests, 1) << "asks";
  press("Allow…");
  EXPECT_THAT(pages.opened, ElementsAre(SettingsPage::keyboard));
  EXPECT_FALSE(hud.hasTap());
  desktop.mediaKeys.trusted = true;
  desktop.scheduler.advance(1.5);
  EXPECT_TRUE(hud.hasTap());
  EXPECT_TRUE(find<QLabel>("✓ Allowed"));
  EXPECT_FALSE(find<QPushButton>("Allow…"));
  find<QCheckBox>("Replace system HUDs")->click();
  EXPECT_FALSE(hud.hasTap()) << "the desktop's own display is back at once";
  desktop.scheduler.advance(1.5);
  EXPECT_FALSE(hud.hasTap());
}

TEST_F(SettingsTest, ShortcutsAreRecorded) {
  shortcuts.start();
  keys.foreign = {"Alt+F4"};
  open();
  const auto type = [this](int key, uint32_t symbol, Qt::KeyboardModifiers held = {}) {
    QKeyEvent press(QEvent::KeyPress, key, held, 0, symbol, 0);
    QApplication::sendEvent(window()->focusWidget(), &press);
  };
  const auto says = [this](const char* text) { return find<QLabel>(text) != nullptr; };
  press("None");
  EXPECT_TRUE(find<QPushButton>("Press the keys…"));
  EXPECT_TRUE(keys.isPaused);
  EXPECT_TRUE(says("Escape leaves it as it is, Backspace removes it."));
  type(Qt::Key_N, 'n');
  type(Qt::Key_Super_L, 0xffeb, Qt::MetaModifier);
  EXPECT_TRUE(keys.isPaused) << "nobody may take a letter from all programs";
  type(Qt::Key_N, 'N', Qt::MetaModifier | Qt::ShiftModifier);
  EXPECT_FALSE(keys.isPaused);
  EXPECT_EQ(keys.chords, (std::map<std::string, std::string>{{"toggle", "Shift+Super+n"}}));
  EXPECT_EQ(desktop.defaults.strings("toggleShortcut"), std::vector<std::string>{"Shift+Super+n"});

  press("Shift + Super + N");
  type(Qt::Key_F4, 0xffc1, Qt::AltModifier);
  EXPECT_TRUE(says("Another program uses Alt + F4."));
  press("Alt + F4");
  type(Qt::Key_Escape, 0xff1b);
  EXPECT_TRUE(find<QPushButton>("Alt + F4")) << "Escape has left the recording, not the window";
  press("Alt + F4");
  type(Qt::Key_Backspace, 0xff08);
  EXPECT_TRUE(keys.chords.empty());
  EXPECT_FALSE(says("Another program uses Alt + F4."));
  press("None");
  close();
  EXPECT_FALSE(keys.isPaused) << "closed while it recorded";

  keys.available = false;
  open();
  EXPECT_FALSE(find<QPushButton>("None"));
  close();
}

TEST_F(SettingsTest, TheHooksRowTellsWhatHasCome) {
  open();
  press("Install");
  const auto first = std::exchange(hooks.finish, nullptr);
  press("Install");
  EXPECT_FALSE(hooks.finish) << "one at a time";
  first("Could not write settings.json: No space left on device");
  EXPECT_TRUE(find<QLabel>("Could not write settings.json: No space left on device"));
  press("Install");
  EXPECT_FALSE(find<QLabel>("Could not write settings.json: No space left on device"));
  hooks.finish("");
  press("Uninstall");
  close();
  hooks.finish("nobody is there to see it");
}

}  // namespace
}  // namespace tarnwick
