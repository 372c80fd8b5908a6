#include <errno.h>
#include <limits.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "base/Environment.h"
#include "base/StandardDescriptors.h"
#include "cli/CommandLine.h"
#include "cli/HomeFolder.h"
#include "cli/HookCLI.h"
#include "cli/HookInstaller.h"
#include "cli/ListenCLI.h"
#include "cli/OverlayClient.h"
#include "cli/RemotePoster.h"
#include "cli/SessionBus.h"
#include "dbus/SessionBusAddress.h"

using namespace tarnwick;

namespace {

/// The absolute path of this program, links resolved; argument 0 where the system does not tell.
std::string executablePath(const char* argument0) {
  char path[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<size_t>(length)) : argument0;
}

/// Becomes the overlay. Returns only when that fails, with the process's status.
int startOverlay(char** arguments) {
  std::string executable = executablePath(arguments[0]);
  const std::string folder = executable.substr(0, executable.rfind('/') + 1);
  const std::string overlay = folder + "../libexec/Tarnwick/overlay";
  arguments[0] = executable.data();
  ::execv(overlay.c_str(), arguments);
  ::fprintf(stderr, "Tarnwick: could not start the overlay %s: %s\n", overlay.c_str(), ::strerror(errno));
  return 127;
}

HookInstaller installer(const char* argument0) {
  // The change to the settings counts, not whether somebody reads what is printed about it.
  ::signal(SIGPIPE, SIG_IGN);
  return HookInstaller(homeFolder(), executablePath(argument0));
}

/// The way to an overlay elsewhere, where one is named.
std::optional<RemotePoster> remotePoster() {
  const std::string_view socket = environment("TARNWICK_SOCKET");
  return socket.empty() ? std::nullopt
                        : std::optional<RemotePoster>(std::in_place, FilePath(socket), machineName());
}

int openThere(StringMap wanted) {
  wanted["window"] = "notch";
  return OverlayClient::open(sessionBusAddress(), wanted) ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// @param ways for who has asked for none of them
int changeLevel(const char* level, std::string_view way, const char* ways) {
  if (!way.empty()) return openThere({{"action", level}, {"way", std::string(way)}});
  ::fprintf(stderr, "Tarnwick: --%s takes %s\n", level, ways);
  return EXIT_FAILURE;
}

}  // namespace

int main(int count, char** arguments) {
  openStandardDescriptors();
  const auto commandLine = CommandLine::parse({arguments, static_cast<size_t>(count)});
  switch (commandLine.role) {
    case Role::hook: {
      if (auto remote = remotePoster()) {
        HookCLI::run(*remote);
        return EXIT_SUCCESS;
      }
      SessionBus bus(sessionBusAddress());
      bus.greet();
      ::signal(SIGPIPE, SIG_IGN);
      HookCLI::run(bus, &bus);
      return EXIT_SUCCESS;
    }
    case Role::installHooks:
      return installer(arguments[0]).install() ? EXIT_SUCCESS : EXIT_FAILURE;
    case Role::uninstallHooks:
      return installer(arguments[0]).uninstall() ? EXIT_SUCCESS : EXIT_FAILURE;
    case Role::showcase: {
      SessionBus bus(sessionBusAddress());
      bus.post(showcaseNotification,
          {{"cmd", std::string(commandLine.value)}, {"arg", std::string(commandLine.argument)}});
      return EXIT_SUCCESS;
    }
    case Role::demo: {
      const auto pause = [](unsigned seconds) { ::sleep(seconds); };
      if (auto remote = remotePoster()) {
        HookCLI::demo(*remote, pause);
        return EXIT_SUCCESS;
      }
      SessionBus bus(sessionBusAddress());
      HookCLI::demo(bus, pause);
      return EXIT_SUCCESS;
    }
    case Role::listen:
      return ListenCLI::run(FilePath(commandLine.value), sessionBusAddress()) ? EXIT_SUCCESS : EXIT_FAILURE;
    case Role::help:
      ::fputs(helpText, stdout);
      return EXIT_SUCCESS;
    case Role::version:
      ::puts("Tarnwick " TARNWICK_VERSION);
      return EXIT_SUCCESS;
    case Role::open:
      return openThere({{"action", "open"}, {"tab", std::string(commandLine.value)}});
    case Role::close:
      return openThere({{"action", "close"}});
    case Role::toggle:
      return openThere({{"action", "toggle"}});
    case Role::next:
      return openThere({{"action", "next"}});
    case Role::volume:
      return changeLevel("volume", commandLine.value, "up, down or mute");
    case Role::brightness:
      return changeLevel("brightness", commandLine.value, "up or down");
    case Role::sessions:
    case Role::followSessions: {
      const bool follow = commandLine.role == Role::followSessions;
      return OverlayClient::printSessions(sessionBusAddress(), follow) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    case Role::snapshot:
    case Role::settings:
    case Role::application:
      return startOverlay(arguments);
  }
}
