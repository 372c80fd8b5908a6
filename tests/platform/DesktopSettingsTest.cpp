#include <gio/gdesktopappinfo.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "linux/files/AutostartEntry.h"
#include "linux/files/DesktopSettingsPages.h"
#include "platform/TestDesktop.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

class DesktopSettings : public testing::Test {
 protected:
  /// A program that writes down its arguments.
  std::string program(const std::string& name) const {
    const std::string path = folders.root.write(name, "#!/bin/sh\necho \"$@\" > '" + said + "'\n");
    std::filesystem::permissions(path, std::filesystem::perms(0755));
    return path;
  }

  const MemoryFolders folders;
  const std::string said = folders.root.path() + "/said";
};

TEST_F(DesktopSettings, TheLoginItemStartsThisVeryProgram) {
  ::setenv("XDG_CONFIG_DIRS", (folders.root.path() + "/system").c_str(), 1);
  for (const char* name : {"Tarnwick", "my apps/Tarnwick", R"(a "b" $HOME `c` \e/Tarnwick)", "é'/Tarnwick"}) {
    const std::string path = program(name);
    AutostartEntry item(folders, path);
    const std::string file = folders.configuration() + "/autostart/dev.tarnwick.Tarnwick.desktop";
    EXPECT_FALSE(item.isEnabled()) << name;
    item.setEnabled(true);
    EXPECT_TRUE(item.isEnabled()) << name;
    EXPECT_FALSE(AutostartEntry(folders, "/elsewhere/Tarnwick").isEnabled()) << "another one is started";

    // As a session starts it.
    GDesktopAppInfo* entry = g_desktop_app_info_new_from_filename(file.c_str());
    ASSERT_TRUE(entry) << name;
    EXPECT_TRUE(g_app_info_launch(G_APP_INFO(entry), nullptr, nullptr, nullptr)) << name;
    g_object_unref(entry);
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::remove(said); })) << name;

    const std::string enabled = contentsOf(file);
    for (const char* off : {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n"}) {
      folders.root.write("configuration/autostart/dev.tarnwick.Tarnwick.desktop", enabled + off);
      EXPECT_FALSE(item.isEnabled()) << off;
    }
    item.setEnabled(true);
    item.setEnabled(false);
    EXPECT_FALSE(std::filesystem::exists(file));
  }

  // A package may start it for everybody.
  const std::string path = program("Tarnwick");
  folders.root.write(
      "system/autostart/dev.tarnwick.Tarnwick.desktop", "[Desktop Entry]\nExec=" + path + "\n");
  AutostartEntry item(folders, path);
  EXPECT_TRUE(item.isEnabled());
  item.setEnabled(false);
  EXPECT_FALSE(item.isEnabled());
  item.setEnabled(true);
  EXPECT_TRUE(item.isEnabled());
  ::unsetenv("XDG_CONFIG_DIRS");
}

TEST_F(DesktopSettings, ThePagesAreThoseOfTheDesktop) {
  const std::string before = ::getenv("PATH");
  const struct {
    const char *desktop, *installed;
    SettingsPage page;
    const char* arguments;
  } cases[] = {
      {"ubuntu:GNOME", "gnome-control-center", SettingsPage::keyboard, "keyboard\n"},
      {"ubuntu:GNOME", "gnome-control-center", SettingsPage::calendars, "online-accounts\n"},
      {"KDE", "systemsettings5", SettingsPage::keyboard, "kcm_keys\n"},
      {"XFCE", "xfce4-keyboard-settings", SettingsPage::keyboard, "\n"},
      {"XFCE", "evolution", SettingsPage::calendars, "-c calendar\n"},
      {"KDE", "gnome-control-center", SettingsPage::keyboard, nullptr},
      {"GNOME", "nothing", SettingsPage::keyboard, nullptr},
      {"", "gnome-control-center", SettingsPage::calendars, nullptr},
  };
  for (const auto& [desktop, installed, page, arguments] : cases) {
    program("bin/" + std::string(installed));
    ::setenv("PATH", (folders.root.path() + "/bin").c_str(), 1);
    ::setenv("XDG_CURRENT_DESKTOP", desktop, 1);
    DesktopSettingsPages pages;
    EXPECT_EQ(pages.has(page), arguments != nullptr) << desktop << ' ' << installed;
    pages.open(page);
    ::setenv("PATH", before.c_str(), 1);
    if (arguments) {
      EXPECT_TRUE(waitUntil([&] { return contentsOf(said) == arguments; }))
          << installed << ": " << contentsOf(said);
    }
    std::filesystem::remove_all(folders.root.path() + "/bin");
    std::filesystem::remove(said);
  }
  ::unsetenv("XDG_CURRENT_DESKTOP");
}

}  // namespace
}  // namespace tarnwick
