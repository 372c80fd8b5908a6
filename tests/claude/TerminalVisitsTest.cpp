#include "claude/TerminalVisits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MemoryDesktop.h"

using namespace tarnwick;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int32_t client = 70, shell = 60, terminal = 50, tmuxClient = 40, otherTerminal = 30, server = 20;

class TerminalVisitsTest : public testing::Test {
 protected:
  TerminalVisitsTest() {
    desktop.foreignProcesses.families = {
        {client, {client, shell, terminal, 9}}, {tmuxClient, {tmuxClient, otherTerminal}}};
    desktop.foreignProcesses.sockets = {"/run/tmux,a", "/run/kitty"};
    desktop.activation.windows = {{terminal, {500, 501}}, {otherTerminal, {300}}, {9, {90}}};
    visits.onLeave = [this] {
      EXPECT_EQ(desktop.activation.broughtForward.size(), left++) << "before, not after";
    };
  }
  static Session session(StringMap variables, std::optional<int32_t> process = client) {
    Session session{.id = "s", .terminal = std::move(variables)};
    if (process) session.process = {*process, 1};
    return session;
  }
  /// The programs that were started, each as one line.
  std::vector<std::string> programs() {
    std::vector<std::string> lines;
    for (const auto& launch : desktop.processes.launches) {
      std::string line = launch.executable;
      for (const std::string& argument : launch.arguments) line += ' ' + argument;
      lines.push_back(line);
    }
    return lines;
  }
  void answer(const std::string& clients) {
    desktop.processes.output(clients);
    desktop.processes.exit();
  }

  const StringMap inTmux{{"TMUX", "/run/tmux,a,20,0"}, {"TMUX_PANE", "%7"}, {"WINDOWID", "500"}};
  const std::string list =
      "tmux -S /run/tmux,a list-clients -F "
      "#{client_activity} #{client_pid} #{client_control_mode} #{client_tty}";
  MemoryDesktop desktop;
  TerminalVisits visits{desktop.scheduler, desktop.foreignProcesses, desktop.processes, desktop.activation};
  size_t left = 0;
};

TEST_F(TerminalVisitsTest, BringsTheWindowForwardAndNoOther) {
  const struct {
    const char* what;
    StringMap variables;
    std::optional<int32_t> process;
    std::vector<uint32_t> window;
  } cases[] = {
      {"the window that is named", {{"WINDOWID", "500"}}, client, {500}},
      {"the nearest that has one", {}, client, {501}},
      {"another program's number", {{"WINDOWID", "300"}}, client, {501}},
      {"no number", {{"WINDOWID", "500; ls"}}, client, {501}},
      {"a program without window", {}, server, {}},
      {"an unknown program", {{"WINDOWID", "500"}}, {}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    desktop.activation.broughtForward.clear();
    left = 0;
    EXPECT_EQ(visits.canVisit(session(c.variables, c.process)), !c.window.empty());
    EXPECT_EQ(visits.visit(session(c.variables, c.process)), !c.window.empty());
    EXPECT_EQ(desktop.activation.broughtForward, c.window);
    EXPECT_EQ(left, c.window.size());
    EXPECT_EQ(*visits.failed, c.window.empty() ? "s" : "");
  }
  EXPECT_THAT(programs(), IsEmpty());
}

TEST_F(TerminalVisitsTest, ShowsThePaneInTheTmuxClientThatWasUsedLast) {
  desktop.foreignProcesses.families[client] = {client, shell, server};
  desktop.foreignProcesses.variables[{tmuxClient, "WINDOWID"}] = "300";
  EXPECT_TRUE(visits.canVisit(session(inTmux)));
  EXPECT_TRUE(visits.visit(session(inTmux)));
  EXPECT_EQ(left, 0) << "it is not known yet whether anybody looks at it";
  answer("100 99 0 /dev/pts/1\n200 40 0 /dev/pts/2\n300 98 1 /dev/pts/3\n300 97 0 \nnonsense\n");
  EXPECT_THAT(programs(),
      ElementsAre(list,
          "tmux -S /run/tmux,a select-window -t %7 ; select-pane -t %7 ; "
          "switch-client -c /dev/pts/2 -t %7"));
  EXPECT_THAT(desktop.activation.broughtForward, ElementsAre(300));
  EXPECT_EQ(left, 1);
}

TEST_F(TerminalVisitsTest, DoesNothingWhereNobodyLooksAtTmux) {
  desktop.foreignProcesses.families[client] = {client, shell, server};
  const std::function<void()> ways[] = {[this] { answer(""); },
      [this] { desktop.processes.fail("no such program"); }, [this] { desktop.scheduler.advance(3); }};
  for (const auto& way : ways) {
    EXPECT_TRUE(visits.visit(session(inTmux)));
    EXPECT_EQ(*visits.failed, "");
    way();
    EXPECT_EQ(*visits.failed, "s");
    EXPECT_FALSE(visits.canVisit(session(inTmux)));
  }
  EXPECT_EQ(left, 0);
  EXPECT_THAT(desktop.activation.broughtForward, IsEmpty());
}

TEST_F(TerminalVisitsTest, TrustsOnlyWhatHasTheRightShape) {
  const StringMap cases[] = {
      {{"TMUX", "/run/tmux,a,20,0"}, {"TMUX_PANE", "%7 ; kill-server"}},
      {{"TMUX", "/run/tmux,a,20,0"}, {"TMUX_PANE", "7"}},
      {{"TMUX", "/tmp/anothers,20,0"}, {"TMUX_PANE", "%7"}},
      {{"TMUX", ","}, {"TMUX_PANE", "%7"}},
      {{"KITTY_LISTEN_ON", "tcp:localhost:1"}, {"KITTY_WINDOW_ID", "3"}},
      {{"KITTY_LISTEN_ON", "unix:/run/kitty"}, {"KITTY_WINDOW_ID", "3 or all"}},
      {{"WEZTERM_PANE", "-1"}},
      {{"KONSOLE_DBUS_SERVICE", "a b"}, {"KONSOLE_DBUS_SESSION", "/Sessions/1"},
          {"KONSOLE_DBUS_WINDOW", "/Windows/1"}},
      {{"KONSOLE_DBUS_SERVICE", ":1.5"}, {"KONSOLE_DBUS_SESSION", "/Sessions/1/x"},
          {"KONSOLE_DBUS_WINDOW", "/Windows/1"}},
  };
  for (const StringMap& variables : cases) EXPECT_TRUE(visits.visit(session(variables)));
  EXPECT_THAT(programs(), IsEmpty());
}

TEST_F(TerminalVisitsTest, SelectsTheTabByTheTerminalsOwnRemoteControl) {
  desktop.foreignProcesses.families[client] = {client, shell, terminal, server};
  const std::pair<StringMap, std::string> cases[] = {
      {{{"KITTY_LISTEN_ON", "unix:/run/kitty"}, {"KITTY_WINDOW_ID", "3"}},
          "kitty @ --to unix:/run/kitty focus-window --match id:3"},
      {{{"WEZTERM_PANE", "4"}}, "wezterm cli activate-pane --pane-id 4"},
      {{{"KONSOLE_DBUS_SERVICE", ":1.5"}, {"KONSOLE_DBUS_SESSION", "/Sessions/2"},
           {"KONSOLE_DBUS_WINDOW", "/Windows/1"}},
          "dbus-send --session --type=method_call --dest=:1.5 /Windows/1 "
          "org.kde.konsole.Window.setCurrentSession int32:2"},
  };
  for (auto [variables, program] : cases) {
    desktop.processes.launches.clear();
    desktop.activation.broughtForward.clear();
    left = 0;
    // Of a tmux from which the terminal was started.
    variables.insert(inTmux.begin(), inTmux.end());
    EXPECT_TRUE(visits.visit(session(variables)));
    EXPECT_THAT(programs(), ElementsAre(program));
    EXPECT_THAT(desktop.activation.broughtForward, ElementsAre(500));
  }
}

}  // namespace
