#include "cli/CommandLine.h"

#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <vector>

using namespace tarnwick;

TEST(CommandLine, SelectsTheFirstRoleThatMatches) {
  struct Case {
    std::vector<const char*> arguments;
    Role role;
    std::string_view value = "", argument = "";
  };
  const Case cases[] = {
      {{}, Role::application},
      {{"--hook"}, Role::hook},
      {{"--install-hooks"}, Role::installHooks},
      {{"--uninstall-hooks"}, Role::uninstallHooks},
      {{"--snapshot", "/out"}, Role::snapshot, "/out"},
      {{"--showcase", "hud", "0.4", "more"}, Role::showcase, "hud", "0.4"},
      // Precedence, whatever the order.
      {{"--demo", "--showcase", "begin", "--snapshot", "/out", "--uninstall-hooks", "--install-hooks",
           "--hook"},
          Role::hook},
      {{"--uninstall-hooks", "--install-hooks"}, Role::installHooks},
      {{"--snapshot", "/out", "--uninstall-hooks"}, Role::uninstallHooks},
      {{"--showcase", "begin", "--snapshot", "/out"}, Role::snapshot, "/out"},
      {{"--demo", "--showcase", "begin"}, Role::showcase, "begin"},
      {{"--version", "--help"}, Role::help},
      {{"--settings", "--listen", "/run/s"}, Role::listen, "/run/s"},
      {{"--listen", "/run/s", "--version"}, Role::version},
      {{"--listen"}, Role::application},
      {{"--version"}, Role::version},
      {{"--settings", "--version"}, Role::version},
      {{"--settings"}, Role::settings},
      {{"--open"}, Role::open},
      {{"--open", "tray", "audio"}, Role::open, "tray"},
      {{"--open", "Tray"}, Role::open},
      {{"--next", "--toggle", "--close", "--open", "--settings"}, Role::settings},
      {{"--next", "--toggle", "--close", "notes", "--open"}, Role::open},
      {{"--next", "--toggle", "--close"}, Role::close},
      {{"--next", "--toggle"}, Role::toggle},
      {{"--sessions", "--next"}, Role::next},
      {{"--sessions", "--volume", "mute"}, Role::volume, "mute"},
      {{"--brightness", "down"}, Role::brightness, "down"},
      {{"--brightness", "mute"}, Role::brightness},
      {{"--volume"}, Role::volume},
      {{"--sessions"}, Role::sessions},
      {{"--follow", "--sessions"}, Role::followSessions},
      {{"--follow"}, Role::application},
      // A switch without its value is passed over; only its first place counts.
      {{"--demo", "--snapshot"}, Role::demo},
      {{"--demo", "--showcase"}, Role::demo},
      {{"--showcase", "--showcase"}, Role::showcase, "--showcase"},
      {{"--snapshot", "--demo"}, Role::snapshot, "--demo"},
      {{"--showcase", "begin", "--snapshot"}, Role::showcase, "begin", "--snapshot"},
      // Neither a switch.
      {{"--Hook", "--hook=1"}, Role::application},
      {{"hook", "-hook", "--hooks", ""}, Role::application},
      {{"--unknown", "file", "--hook"}, Role::hook},
  };
  for (const Case& one : cases) {
    std::vector<const char*> arguments{"/opt/bin/Tarnwick"};
    arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
    const auto result = CommandLine::parse(arguments);
    const std::string shown = testing::PrintToString(one.arguments);
    EXPECT_EQ(result.role, one.role) << shown;
    EXPECT_EQ(result.value, one.value) << shown;
    EXPECT_EQ(result.argument, one.argument) << shown;
  }
}

TEST(CommandLine, EachOptionOfTheHelpIsInTheManualAndCompleted) {
  const auto contents = [](const std::string& name) {
    std::stringstream text;
    text << std::ifstream(TARNWICK_ASSETS "/" + name).rdbuf();
    return std::regex_replace(text.str(), std::regex(R"(\\-)"), "-");
  };
  const std::string manual = contents("Tarnwick.1.in"), bash = contents("completions/Tarnwick.bash"),
                    zsh = contents("completions/_tarnwick"), fish = contents("completions/Tarnwick.fish");
  const std::string help = helpText;
  const std::regex option("--([a-z-]+)");
  int options = 0;
  for (std::sregex_iterator found(help.begin(), help.end(), option), end; found != end; ++found, ++options) {
    const std::string whole = found->str(), name = found->str(1);
    EXPECT_THAT(manual, testing::HasSubstr(whole));
    EXPECT_THAT(bash, testing::HasSubstr(whole));
    EXPECT_THAT(zsh, testing::HasSubstr(whole + "["));
    EXPECT_THAT(fish, testing::HasSubstr("-l " + name + " "));
  }
  EXPECT_GT(options, 0);
}
