#include "linux/files/DesktopSettingsPages.h"

#include <QProcess>
#include <QStandardPaths>
#include <QString>

namespace tarnwick {
namespace {

struct Candidate {
  SettingsPage page;
  /// None: on any desktop.
  const char* desktop;
  const char* command;
};

/// The first one that is there is taken.
constexpr Candidate candidates[] = {
    {SettingsPage::keyboard, "GNOME", "gnome-control-center keyboard"},
    {SettingsPage::keyboard, "Unity", "gnome-control-center keyboard"},
    {SettingsPage::keyboard, "Budgie", "budgie-control-center keyboard"},
    {SettingsPage::keyboard, "KDE", "systemsettings kcm_keys"},
    {SettingsPage::keyboard, "KDE", "systemsettings5 kcm_keys"},
    {SettingsPage::keyboard, "XFCE", "xfce4-keyboard-settings"},
    {SettingsPage::keyboard, "X-Cinnamon", "cinnamon-settings keyboard"},
    {SettingsPage::keyboard, "MATE", "mate-keybinding-properties"},
    {SettingsPage::keyboard, "LXQt", "lxqt-config-globalkeyshortcuts"},
    {SettingsPage::calendars, "GNOME", "gnome-control-center online-accounts"},
    {SettingsPage::calendars, "Unity", "gnome-control-center online-accounts"},
    {SettingsPage::calendars, "Budgie", "budgie-control-center online-accounts"},
    // Programs that keep calendars where we read them.
    {SettingsPage::calendars, nullptr, "gnome-calendar"},
    {SettingsPage::calendars, nullptr, "evolution -c calendar"},
};

/// The command that opens the page, taken apart; empty where there is none.
QStringList command(SettingsPage page) {
  const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':');
  for (const Candidate& each : candidates) {
    if (each.page != page || (each.desktop && !desktops.contains(QLatin1String(each.desktop)))) continue;
    const QStringList words = QString(each.command).split(' ');
    if (!QStandardPaths::findExecutable(words.first()).isEmpty()) return words;
  }
  return {};
}

}  // namespace

bool DesktopSettingsPages::has(SettingsPage page) const { return !command(page).isEmpty(); }

void DesktopSettingsPages::open(SettingsPage page) {
  QStringList words = command(page);
  if (words.isEmpty()) return;
  const QString program = words.takeFirst();
  QProcess::startDetached(program, words);
}

}  // namespace tarnwick
