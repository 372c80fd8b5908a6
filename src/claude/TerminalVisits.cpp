#include "claude/TerminalVisits.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <utility>

#include "base/TerminalVariables.h"

namespace tarnwick {
namespace {

/// What has not ended by then hangs, in seconds.
constexpr double patience = 2;
/// Of multiplexers within multiplexers.
constexpr int mostLevels = 4;

/// A whole number without sign that follows the prefix, and nothing else.
std::optional<uint32_t> numberAfter(std::string_view prefix, std::string_view text) {
  if (!text.starts_with(prefix)) return std::nullopt;
  text.remove_prefix(prefix.size());
  uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::string valueIn(const StringMap& terminal, const char* name) {
  return valueOf(terminal, name).value_or("");
}

bool isBusName(std::string_view text) {
  return !text.empty() && !text.starts_with('-') && std::ranges::all_of(text, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == ':' || c == '-' || c == '_';
  });
}

/// A line of tmux's answer about its clients.
struct Client {
  static constexpr auto format = "#{client_activity} #{client_pid} #{client_control_mode} #{client_tty}";
  long long lastUsed = 0;
  int32_t process = 0;
  std::string device;
};

/// The client that was used last, of those that show something.
std::optional<Client> lastUsed(const std::string& answer) {
  std::optional<Client> last;
  std::istringstream lines(answer);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    Client client;
    int isControlled = 0;
    if (!(words >> client.lastUsed >> client.process >> isControlled >> client.device)) continue;
    if (isControlled || !client.device.starts_with('/')) continue;
    if (!last || client.lastUsed >= last->lastUsed) last = client;
  }
  return last;
}

}  // namespace

TerminalVisits::TerminalVisits(
    Scheduler& scheduler, ForeignProcesses& processes, ChildProcesses& programs, WindowActivation& windows)
    : scheduler_(scheduler), processes_(processes), programs_(programs), windows_(windows) {}

bool TerminalVisits::canVisit(const Session& session) {
  if (!session.process || *failed == session.id) return false;
  const Place place{*session.process, session.terminal};
  return tmuxPane(place) || windowOf(place);
}

bool TerminalVisits::visit(const Session& session) {
  running_.clear();
  patience_ = {};
  isAsking_ = false;
  session_ = session.id;
  failed = std::string();
  return session.process ? go({*session.process, session.terminal}, 0) : fail();
}

bool TerminalVisits::go(const Place& place, int level) {
  if (const auto pane = tmuxPane(place)) {
    if (level == mostLevels) return fail();
    askTmux(*pane, place.process.space, level);
    return true;
  }
  const auto window = windowOf(place);
  if (!window) return fail();
  selectTab(place.terminal);
  if (onLeave) onLeave();
  windows_.bringForward(*window);
  return true;
}

std::optional<TerminalVisits::Pane> TerminalVisits::tmuxPane(const Place& place) {
  // "SOCKET,SERVER,SESSION"
  const std::string told = valueIn(place.terminal, "TMUX"), pane = valueIn(place.terminal, "TMUX_PANE");
  const size_t last = told.rfind(',');
  const size_t first = last == told.npos || last == 0 ? told.npos : told.rfind(',', last - 1);
  if (first == told.npos || !numberAfter("%", pane)) return std::nullopt;
  const auto server = numberAfter("", std::string_view(told).substr(first + 1, last - first - 1));
  const std::string socket = told.substr(0, first);
  auto family = processes_.ancestors(place.process);
  if (!server || family.empty() || !processes_.isOwnSocket(socket)) return std::nullopt;
  // A terminal that was started from within tmux has inherited its variables.
  const auto end = std::ranges::find(family, static_cast<int32_t>(*server));
  const bool isInside = end != family.end();
  family.erase(end, family.end());
  if (isInside && windows_.windowOf(0, family)) return std::nullopt;
  return Pane{socket, pane};
}

std::optional<uint32_t> TerminalVisits::windowOf(const Place& place) {
  const auto family = processes_.ancestors(place.process);
  if (family.empty()) return std::nullopt;
  return windows_.windowOf(numberAfter("", valueIn(place.terminal, "WINDOWID")).value_or(0), family);
}

void TerminalVisits::askTmux(const Pane& pane, uint64_t space, int level) {
  isAsking_ = true;
  run("tmux", {"-S", pane.socket, "list-clients", "-F", Client::format},
      [this, pane, space, level](const std::string& answer) {
        isAsking_ = false;
        const auto client = lastUsed(answer);
        if (!client) {
          fail();
          return;
        }
        run("tmux", {"-S", pane.socket, "select-window", "-t", pane.name, ";", "select-pane", "-t", pane.name,
                        ";", "switch-client", "-c", client->device, "-t", pane.name});
        // The panes' own variables are those of the terminal in which the server was started.
        const ForeignProcess process{client->process, space};
        StringMap terminal;
        for (const char* name : terminalVariables) {
          const std::string value = processes_.variable(process, name);
          if (!value.empty() && value.size() <= longestTerminalValue) terminal[name] = value;
        }
        go({process, terminal}, level + 1);
      });
}

void TerminalVisits::selectTab(const StringMap& terminal) {
  const std::string listener = valueIn(terminal, "KITTY_LISTEN_ON");
  const auto kitty = numberAfter("", valueIn(terminal, "KITTY_WINDOW_ID"));
  if (kitty && listener.starts_with("unix:") && processes_.isOwnSocket(listener.substr(5))) {
    run("kitty", {"@", "--to", listener, "focus-window", "--match", "id:" + std::to_string(*kitty)});
  }
  if (const auto pane = numberAfter("", valueIn(terminal, "WEZTERM_PANE"))) {
    run("wezterm", {"cli", "activate-pane", "--pane-id", std::to_string(*pane)});
  }
  const std::string service = valueIn(terminal, "KONSOLE_DBUS_SERVICE");
  const auto session = numberAfter("/Sessions/", valueIn(terminal, "KONSOLE_DBUS_SESSION"));
  const auto window = numberAfter("/Windows/", valueIn(terminal, "KONSOLE_DBUS_WINDOW"));
  if (session && window && isBusName(service)) {
    run("dbus-send",
        {"--session", "--type=method_call", "--dest=" + service, "/Windows/" + std::to_string(*window),
            "org.kde.konsole.Window.setCurrentSession", "int32:" + std::to_string(*session)});
  }
}

void TerminalVisits::run(const std::string& program, const std::vector<std::string>& arguments,
    std::function<void(const std::string&)> then) {
  const auto child = std::make_shared<std::unique_ptr<ChildProcess>>();
  running_.push_back(child);
  ChildProcesses::Events events;
  events.onReadable = [] {};
  // What it has said fits into its pipe, or it does not end.
  events.onExit = [at = child.get(), then] {
    std::string output;
    for (std::string bytes = (*at)->read(); !bytes.empty(); bytes = (*at)->read()) output += bytes;
    then(output);
  };
  events.onFailure = [then](const std::string&) { then(""); };
  *child = programs_.launch(program, arguments, std::move(events));
  patience_ = scheduler_.after(patience, [this] {
    running_.clear();
    if (std::exchange(isAsking_, false)) fail();
  });
}

bool TerminalVisits::fail() {
  failed = session_;
  return false;
}

}  // namespace tarnwick
