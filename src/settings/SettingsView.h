#pragma once
#include <QScrollArea>
#include <functional>
#include <initializer_list>
#include <utility>
#include <vector>

#include "core/HUDService.h"
#include "core/NotchModel.h"
#include "core/ShortcutService.h"
#include "platform/DesktopAppearance.h"
#include "platform/HookSetup.h"
#include "platform/LoginItem.h"
#include "platform/SettingsPages.h"
#include "settings/SettingsForm.h"
#include "settings/ShortcutButton.h"
#include "settings/SwitchRow.h"

namespace tarnwick {

/// What the settings window works on. All of it outlives the window.
struct SettingsContext {
  NotchModel& model;
  HUDService& hud;
  ShortcutService& shortcuts;
  LoginItem& loginItem;
  SettingsPages& pages;
  HookSetup& hooks;
  const DesktopAppearance& appearance;
  Scheduler& scheduler;
  /// Nothing that the user could do would free the volume keys.
  bool keysStayWithDesktop = false;
  /// Ends the program.
  std::function<void()> quit;
};

/// The settings as a grouped form, which shows what is true: as it is made, as it changes and, of what
/// nobody tells, whenever `refresh` is called.
class SettingsView : public QScrollArea {
 public:
  explicit SettingsView(const SettingsContext& context);

  /// Looks at the login item and the hooks again.
  void refresh();

 private:
  SettingsCard& addSection(const QString& header);
  void addToggle(SettingsCard& card, const QString& text, AppSettings::Flag& flag);
  void addGeneral();
  void addActivities();
  void addKeys();
  void addShortcuts();
  void addClaudeCode();

  void followSettings();
  void followShortcuts();
  void lookForTrust();
  void changeHooks();

  const SettingsContext context_;
  QVBoxLayout* const form_;
  std::vector<std::pair<SwitchRow*, AppSettings::Flag*>> toggles_;
  SwitchRow* loginItem_ = nullptr;
  std::vector<QWidget*> calendarAccess_;
  QLabel* allowed_ = nullptr;
  QLabel* keysCaption_ = nullptr;
  QPushButton* allow_ = nullptr;
  /// In the order of the service's actions.
  std::vector<ShortcutButton*> shortcuts_;
  std::vector<QWidget*> shortcutRows_;
  QLabel* shortcutsCaption_ = nullptr;
  QPushButton* hooks_ = nullptr;
  QLabel* hooksProblem_ = nullptr;
  /// They are being added or removed.
  bool hooksChange_ = false;
  std::vector<Subscription> subscriptions_;
  Task trust_;
};

}  // namespace tarnwick
