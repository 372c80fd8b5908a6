#include "claude/PermissionService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ForcedLanguage.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::IsEmpty;

class PermissionServiceTest : public testing::Test {
 protected:
  void send(const std::string& session, const std::string& name, StringMap event = {}) {
    event.merge(StringMap{{"hook_event_name", name}, {"session_id", session}});
    claude.handle(event);
  }
  uint64_t ask(const std::string& session, StringMap event = {}) {
    event.merge(StringMap{{"hook_event_name", "PermissionRequest"}, {"session_id", session},
        {"tool_name", "Bash"}, {"tool_detail", "make"}, {toolInputKey, R"({"command":"make"})"}});
    service.ask({++number, event});
    return number;
  }
  /// The buttons of that request are on the screen for long.
  void show(uint64_t request) {
    service.appeared(request);
    desktop.scheduler.advance(PermissionService::settling);
  }
  std::string answerTo(uint64_t request) const {
    const auto found = desktop.permissions.answers.find(request);
    if (found == desktop.permissions.answers.end()) return "waits";
    using enum PermissionAnswer::Behavior;
    return found->second.behavior == none ? "none" : found->second.behavior == allow ? "allow" : "deny";
  }
  const Session& session(const char* id) const { return claude.sessions->at(id); }

  const ForcedLanguage english{"en"};
  MemoryDesktop desktop;
  AppSettings settings{desktop.defaults};
  ClaudeService claude{desktop.scheduler, desktop.sounds};
  PermissionService service{desktop.scheduler, claude, desktop.permissions, settings};
  uint64_t number = 0;
};

TEST_F(PermissionServiceTest, AnswersExactlyTheRequestThatWasPressed) {
  const uint64_t first = ask("a"), second = ask("a"), other = ask("b", {{"tool_detail", "rm"}});
  EXPECT_EQ(PermissionService::requestOf(session("a"))->number, first);
  EXPECT_EQ(service.onlySession(), "");
  show(first);
  service.allow(first);
  EXPECT_EQ(answerTo(first), "allow");
  EXPECT_EQ(answerTo(second), "waits");
  EXPECT_EQ(session("a").phase, Phase::waiting);
  service.allow(first);
  service.deny(first);
  EXPECT_EQ(answerTo(first), "allow") << "a second press";
  EXPECT_EQ(PermissionService::requestOf(session("a"))->number, second);
  show(second);
  service.deny(second);
  EXPECT_EQ(answerTo(second), "deny");
  EXPECT_EQ(desktop.permissions.answers[second].message, "The user has denied this.");
  EXPECT_EQ(session("a").phase, Phase::working);
  EXPECT_EQ(session("a").activity, "Thinking…");
  EXPECT_EQ(service.onlySession(), "b");
  show(other);
  service.allow(other);
  EXPECT_EQ(session("b").activity, "Running · rm");
}

TEST_F(PermissionServiceTest, TakesNoAnswerUntilTheButtonsHaveSettled) {
  const uint64_t one = ask("a");
  service.allow(one);
  EXPECT_EQ(answerTo(one), "waits") << "it is not on the screen";
  service.appeared(one);
  desktop.scheduler.advance(0.45);
  service.allow(one);
  service.deny(one);
  service.appeared(one);
  desktop.scheduler.advance(0.45);
  EXPECT_FALSE(service.takesAnswer(one)) << "they have moved meanwhile";
  desktop.scheduler.advance(0.06);
  service.allow(one);
  EXPECT_EQ(answerTo(one), "allow");
}

TEST_F(PermissionServiceTest, LetsGoOfWhatWasAnsweredElsewhere) {
  const StringMap call{{"tool_name", "Bash"}, {"tool_detail", "make"}};
  const struct {
    const char* what;
    std::function<void()> happens;
    bool isAnswered;
  } cases[] = {
      {"it has run", [&] { send("a", "PostToolUse", call); }, true},
      {"another has run",
          [&] {
            send("a", "PostToolUse", {{"tool_name", "Read"}});
          },
          false},
      {"another begins", [&] { send("a", "PreToolUse", call); }, false},
      {"the reminder",
          [&] {
            send("a", "Notification", {{"notification_type", "permission_prompt"}});
          },
          false},
      {"it runs", [&] { claude.resume("a", *session("a").request()); }, true},
      {"interrupted", [&] { claude.interrupt("a"); }, true},
      {"stopped", [&] { send("a", "Stop"); }, true},
      {"a prompt", [&] { send("a", "UserPromptSubmit"); }, true},
      {"it ends", [&] { send("a", "SessionEnd"); }, true},
      {"its process is gone", [&] { claude.end("a"); }, true},
      {"forgotten in a flood",
          [&] {
            for (int i = 0; i < 120; ++i) send(std::to_string(i), "UserPromptSubmit");
            for (int i = 0; i < 120; ++i) send(std::to_string(i), "Notification", {{"message", "?"}});
          },
          true},
      {"switched off", [&] { settings.answerPermissions = false; }, true},
      {"in the other session", [&] { send("b", "PostToolUse", call); }, false},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    settings.answerPermissions = true;
    const uint64_t request = ask("a");
    desktop.scheduler.advance(1);
    one.happens();
    EXPECT_EQ(answerTo(request), one.isAnswered ? "none" : "waits");
    show(request);
    service.allow(request);
    EXPECT_EQ(answerTo(request), one.isAnswered ? "none" : "allow");
    claude.clear();
  }
}

TEST_F(PermissionServiceTest, WaitsInTheTerminalWhereItCannotBeAnsweredHere) {
  const struct {
    const char* what;
    StringMap event;
  } cases[] = {
      {"a question", {{"tool_name", "AskUserQuestion"}}},
      {"a plan", {{"tool_name", "ExitPlanMode"}}},
      {"on another machine", {{machineKey, "far"}}},
      {"without its input", {{toolInputKey, ""}}},
      {"too long", {{toolInputKey, std::string(longestToolInput + 1, ' ')}}},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    const uint64_t request = ask("a", one.event);
    EXPECT_EQ(answerTo(request), "none");
    EXPECT_EQ(session("a").phase, Phase::waiting);
    EXPECT_FALSE(PermissionService::requestOf(session("a")));
  }
  settings.answerPermissions = false;
  EXPECT_EQ(answerTo(ask("a")), "none");
  EXPECT_EQ(session("a").phase, Phase::waiting);
  settings.answerPermissions = true;

  const uint64_t request = ask("a");
  desktop.permissions.end(request);
  EXPECT_FALSE(PermissionService::requestOf(session("a"))) << "who asks is gone";
  EXPECT_EQ(session("a").phase, Phase::waiting) << "but not the dialog";
  EXPECT_THAT(service.input(request), IsEmpty());
}

TEST_F(PermissionServiceTest, KeepsTheLatestOfAFlood) {
  const std::string much(longestToolInput, ' ');
  std::vector<uint64_t> all;
  for (int i = 0; i < 1000; ++i) all.push_back(ask("a"));
  EXPECT_EQ(answerTo(all[0]), "none");
  EXPECT_EQ(answerTo(all[799]), "none");
  EXPECT_EQ(answerTo(all[800]), "waits");
  const uint64_t first = ask("b", {{toolInputKey, much}});
  for (int i = 0; i < 63; ++i) ask("b", {{toolInputKey, much}});
  EXPECT_EQ(answerTo(first), "waits");
  EXPECT_EQ(answerTo(all[999]), "none") << "four megabytes are enough";
  ask("b", {{toolInputKey, much}});
  EXPECT_EQ(answerTo(first), "none");
  EXPECT_EQ(session("b").phase, Phase::waiting);
}

}  // namespace
}  // namespace tarnwick
