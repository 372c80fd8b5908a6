#include "cli/CommandLine.h"

#include <algorithm>

#include "base/Tab.h"

namespace tarnwick {
namespace {

std::string_view asView(const char* text) { return text; }

}  // namespace

CommandLine CommandLine::parse(std::span<const char* const> arguments) {
  const auto find = [&](std::string_view name) { return std::ranges::find(arguments, name, asView); };
  const auto has = [&](std::string_view name) { return find(name) != arguments.end(); };
  // A switch that takes a value and stands last is passed over, so that a later rule can still match.
  const auto valuesOf = [&](std::string_view name) {
    const auto found = find(name);
    return found == arguments.end() ? arguments.last(0) : arguments.last(arguments.end() - found - 1);
  };

  if (has("--hook")) return {Role::hook};
  if (has("--install-hooks")) return {Role::installHooks};
  if (has("--uninstall-hooks")) return {Role::uninstallHooks};
  if (const auto values = valuesOf("--snapshot"); !values.empty()) return {Role::snapshot, values[0]};
  if (const auto values = valuesOf("--showcase"); !values.empty()) {
    return {Role::showcase, values[0], values.size() > 1 ? values[1] : ""};
  }
  if (has("--demo")) return {Role::demo};
  if (has("--help")) return {Role::help};
  if (has("--version")) return {Role::version};
  if (const auto values = valuesOf("--listen"); !values.empty()) return {Role::listen, values[0]};
  if (has("--settings")) return {Role::settings};
  if (has("--open")) {
    const auto values = valuesOf("--open");
    return {Role::open, !values.empty() && tabNamed(values[0]) ? values[0] : ""};
  }
  if (has("--close")) return {Role::close};
  if (has("--toggle")) return {Role::toggle};
  if (has("--next")) return {Role::next};
  const auto wayOf = [&](std::string_view name, std::initializer_list<std::string_view> ways) {
    const auto values = valuesOf(name);
    return !values.empty() && std::ranges::find(ways, values[0]) != ways.end() ? values[0] : "";
  };
  if (has("--volume")) return {Role::volume, wayOf("--volume", {"up", "down", "mute"})};
  if (has("--brightness")) return {Role::brightness, wayOf("--brightness", {"up", "down"})};
  if (has("--sessions")) return {has("--follow") ? Role::followSessions : Role::sessions};
  return {};
}

const char* const helpText =
    "Usage: Tarnwick [option]\n"
    "Without an option, Tarnwick starts the overlay that shows running Claude Code sessions\n"
    "at the top of the screen, or opens it where it is running.\n"
    "\n"
    "  --settings                    open the settings window; starts the overlay, too\n"
    "  --open [home|audio|claude|tray|notes]\n"
    "                                open the notch, by keyboard: Escape closes it\n"
    "  --close                       close it\n"
    "  --toggle                      close it where it is open, else open it\n"
    "  --next                        open the list at the session that has waited for you longest\n"
    "  --volume up|down|mute         change the volume as the key would, and show it in the notch\n"
    "  --brightness up|down          the same for the screen's brightness\n"
    "  --sessions [--follow]         print the sessions as JSON, with --follow a line at each change\n"
    "  --install-hooks               add Tarnwick's hooks to ~/.claude/settings.json\n"
    "  --uninstall-hooks             remove them again\n"
    "  --hook                        relay one hook event from standard input to the overlay\n"
    "  --listen SOCKET               relay hook events from other machines or containers, too\n"
    "  --demo                        play a short scripted session in the overlay\n"
    "  --showcase COMMAND [ARGUMENT] drive the demonstration in the running overlay, from \"begin\"\n"
    "                                to \"end\"; the README lists the commands\n"
    "  --snapshot FOLDER             save pictures of fourteen scenes of the notch there; needs no\n"
    "                                display\n"
    "  --help                        show this text\n"
    "  --version                     show the version\n";

}  // namespace tarnwick
