#include "claude/ClaudeService.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ForcedLanguage.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

using testing::ElementsAre;

class ClaudeServiceTest : public testing::Test {
 protected:
  ClaudeServiceTest() {
    claude.onBanner = [this](const Banner& banner, double seconds) { banners.emplace_back(banner, seconds); };
  }

  void send(const std::string& name, StringMap more = {}) {
    more.emplace("session_id", "s");
    more["hook_event_name"] = name;
    claude.handle(more);
  }
  void pass(double seconds) { desktop.scheduler.advance(seconds); }
  const Session& session(const std::string& id = "s") const { return claude.sessions->at(id); }
  std::optional<Phase> phase() const {
    const auto found = claude.sessions->find("s");
    return found == claude.sessions->end() ? std::nullopt : std::optional(found->second.phase);
  }
  std::vector<std::string> order() const {
    std::vector<std::string> ids;
    for (const Session& each : claude.ordered()) ids.push_back(each.id);
    return ids;
  }

  const ForcedLanguage english{"en"};
  MemoryDesktop desktop;
  ClaudeService claude{desktop.scheduler, desktop.sounds};
  std::vector<std::pair<Banner, double>> banners;
};

TEST_F(ClaudeServiceTest, AWholePieceOfWork) {
  const Date start = desktop.scheduler.now();
  send("UserPromptSubmit", {{"cwd", "/src/shop"}});
  EXPECT_EQ(session(), (Session{"s", "shop", Phase::working, start, "Thinking…", start, {}, start}));
  pass(2);
  send("PreToolUse", {{"cwd", "/src/shop"}, {"tool_name", "Bash"}, {"tool_detail", "npm test"}});
  EXPECT_EQ(
      session(), (Session{"s", "shop", Phase::working, start, "Running · npm test", start, {}, start + 2}));
  EXPECT_TRUE(banners.empty());
  pass(3);
  send("Notification", {{"cwd", "/src/shop"}, {"notification_type", "permission_prompt"},
                           {"message", "Claude needs your permission to use Bash"}});
  EXPECT_EQ(session().phase, Phase::waiting);
  ASSERT_EQ(banners.size(), 1u);
  const Banner wait = banners[0].first;
  EXPECT_EQ(wait, (Banner{wait.id, "hand.raised.fill", colors::yellow, "shop", "Permission needed: Bash",
                      CrabMood::waiting, "", "s"}));
  EXPECT_EQ(banners[0].second, 8);
  pass(4);
  send("PostToolUse", {{"cwd", "/src/shop"}, {"tool_name", "Bash"}});
  EXPECT_EQ(session(), (Session{"s", "shop", Phase::working, start + 9, "Thinking…", start, {}, start + 9}));
  pass(4);
  send("Stop", {{"cwd", "/src/shop"}});
  EXPECT_EQ(session(),
      (Session{"s", "shop", Phase::done, start + 13, "Done in 13s", start, start + 13, start + 13}));
  ASSERT_EQ(banners.size(), 2u);
  const Banner done = banners[1].first;
  EXPECT_EQ(done, (Banner{done.id, "checkmark.circle.fill", colors::green, "shop", "Done in 13s",
                      CrabMood::happy, "", "s"}));
  EXPECT_EQ(banners[1].second, 5);
  EXPECT_NE(done.id, wait.id);
  EXPECT_THAT(desktop.sounds.played, ElementsAre(Sound::message, Sound::complete));
}

TEST_F(ClaudeServiceTest, WaitsForWhatIsRequestedAndKeepsTheBetterText) {
  struct Case {
    const char* what;
    StringMap request;
    std::string activity;
    std::string detail;
    StringMap notification;
    std::string announced;
    std::string announcedDetail;
  };
  const StringMap permission{
      {"notification_type", "permission_prompt"}, {"message", "Claude needs your permission"}};
  const StringMap bash{{"tool_name", "Bash"}, {"tool_detail", "npm test"}};
  const Case cases[] = {
      {"a tool", bash, "Permission needed: Bash", "npm test", permission, "Permission needed: Bash",
          "npm test"},
      {"a notification that names a tool", bash, "Permission needed: Bash", "npm test",
          {{"notification_type", "permission_prompt"},
              {"message", "Claude needs your permission to use Edit"}},
          "Permission needed: Edit", "npm test"},
      {"about something else", bash, "Permission needed: Bash", "npm test",
          {{"notification_type", "auth"}, {"message", "Log in"}}, "Log in", ""},
      {"a question", {{"tool_name", "AskUserQuestion"}, {"question", "Which colour?"}},
          "Question: Which colour?", "", permission, "Question: Which colour?", ""},
      {"no names", {}, "Waiting for you", "", permission, "Waiting for you", ""},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.what);
    banners.clear();
    desktop.sounds.played.clear();
    send("PreToolUse", bash);
    send("PermissionRequest", one.request);
    EXPECT_EQ(session().phase, Phase::waiting);
    EXPECT_EQ(session().activity, one.activity);
    EXPECT_EQ(session().request()->detail, one.detail);
    EXPECT_TRUE(banners.empty() && desktop.sounds.played.empty()) << "the user may be looking at it";
    send("Notification", one.notification);
    ASSERT_EQ(banners.size(), 1u);
    EXPECT_EQ(banners[0].first.subtitle, one.announced);
    EXPECT_EQ(banners[0].first.detail, one.announcedDetail);
    EXPECT_THAT(desktop.sounds.played, ElementsAre(Sound::message));
    send("PostToolUse");
    EXPECT_FALSE(session().request());
  }
}

TEST_F(ClaudeServiceTest, WaitsUntilAllRequestsThatCanBeAnsweredHereHaveBeen) {
  const StringMap first{{"tool_name", "Bash"}, {"tool_detail", "make"}};
  const StringMap second{{"tool_name", "Edit"}, {"tool_detail", "a.c"}};
  const auto ask = [&](StringMap event, uint64_t number) {
    event.merge(StringMap{{"hook_event_name", "PermissionRequest"}, {"session_id", "s"}});
    claude.handle(event, number);
  };
  const auto numbers = [&] {
    std::vector<uint64_t> all;
    for (const auto& request : session().requests) all.push_back(request.number);
    return all;
  };
  ask(first, 0);
  ask(first, 1);
  ask(first, 2);
  ask(second, 3);
  EXPECT_THAT(numbers(), ElementsAre(1, 2, 3)) << "of those that are answered elsewhere only the last counts";
  send("PreToolUse", {{"tool_name", "Read"}});
  send("PostToolUse", {{"tool_name", "Read"}});
  send("Notification", {{"message", "Log in"}});
  EXPECT_THAT(numbers(), ElementsAre(1, 2, 3));
  EXPECT_EQ(session().phase, Phase::waiting);
  send("PostToolUse", first);
  EXPECT_THAT(numbers(), ElementsAre(2, 3)) << "one of two equal calls";
  claude.resume("s", session().requests[0]);
  EXPECT_EQ(session().activity, "Permission needed: Edit");
  claude.withdraw("s", 3);
  EXPECT_THAT(numbers(), ElementsAre(0)) << "it waits in the terminal";
  EXPECT_EQ(session().phase, Phase::waiting);
  claude.resume("s", session().requests[0], false);
  EXPECT_EQ(session().phase, Phase::working);
  EXPECT_EQ(session().activity, "Thinking…");

  for (const char* end : {"Stop", "UserPromptSubmit", "StopFailure"}) {
    ask(first, 4);
    send(end);
    EXPECT_THAT(numbers(), testing::IsEmpty()) << end;
  }
  ask(first, 5);
  claude.interrupt("s");
  EXPECT_THAT(numbers(), testing::IsEmpty());
  claude.handle({{"hook_event_name", "PermissionRequest"}, {"session_id", "s"}, {machineKey, "far"}}, 6);
  EXPECT_THAT(numbers(), ElementsAre(0)) << "it is asked elsewhere";
}

TEST_F(ClaudeServiceTest, WaitsWhenAnErrorHasStoppedIt) {
  send("UserPromptSubmit");
  send("StopFailure", {{"error", "billing_error"}, {"last_assistant_message", "Credit balance is too low"}});
  EXPECT_EQ(session().phase, Phase::waiting);
  ASSERT_EQ(banners.size(), 1u);
  EXPECT_EQ(banners[0].first,
      (Banner{.id = banners[0].first.id,
          .icon = "exclamationmark.triangle.fill",
          .tint = colors::red,
          .title = "Claude Code",
          .subtitle = "Credit balance is too low",
          .session = "s"}));
  EXPECT_EQ(banners[0].second, 8);
  EXPECT_THAT(desktop.sounds.played, ElementsAre(Sound::batteryLow));
  send("StopFailure", {{"error", "server_error"}});
  EXPECT_EQ(session().activity, "Stopped by an error: server_error");
}

TEST_F(ClaudeServiceTest, ToolsRestartTheClockOnlyOfSessionsAtRest) {
  const Date start = desktop.scheduler.now();
  send("SessionStart");
  EXPECT_EQ(session().phase, Phase::idle);
  EXPECT_EQ(session().activity, "");
  pass(10);
  send("PreToolUse");
  EXPECT_EQ(session().startedAt, start + 10) << "was idle";
  send("Notification");
  pass(10);
  send("PreToolUse");
  EXPECT_EQ(session().startedAt, start + 10) << "was waiting";
  send("Stop");
  pass(10);
  send("PostToolUse");
  EXPECT_EQ(session().startedAt, start + 10) << "the end of a tool starts nothing";
  send("Stop");
  send("PreToolUse");
  EXPECT_EQ(session().startedAt, start + 30) << "was done";
  EXPECT_TRUE(session().finishedAt) << "only a prompt clears it";
  send("SessionStart");
  EXPECT_EQ(session().phase, Phase::working);
  send("UserPromptSubmit");
  EXPECT_FALSE(session().finishedAt);
}

TEST_F(ClaudeServiceTest, EventsThatChangeNothing) {
  int changes = 0;
  send("UserPromptSubmit");
  const auto subscription = claude.observe([&] { ++changes; });
  const Session before = session();
  pass(1);
  const StringMap ignored[] = {
      {},
      {{"session_id", "s"}},
      {{"session_id", "s"}, {"hook_event_name", "stop"}},
      {{"session_id", "new"}, {"hook_event_name", "PreCompact"}},
      {{"session_id", "new"}, {"hook_event_name", "SessionEnd"}},
      {{"session_id", "s"}, {"hook_event_name", "Notification"}, {"notification_type", "idle_prompt"}},
      {{"session_id", "new"}, {"hook_event_name", "Notification"},
          {"message", "Claude is waiting for your input"}},
      {{"session_id", "s"}, {"hook_event_name", "Notification"}, {"message", "WAITING FOR YOUR INPUT!"}},
  };
  for (const StringMap& event : ignored) claude.handle(event);
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(claude.sessions->size(), 1u);
  EXPECT_EQ(session(), before);
  EXPECT_TRUE(banners.empty());
  EXPECT_TRUE(desktop.sounds.played.empty());

  send("Notification", {{"notification_type", "Idle_prompt"}, {"message", "waiting for you"}});
  EXPECT_EQ(session().phase, Phase::waiting) << "neither the type nor the phrase";
  EXPECT_EQ(changes, 1);
}

TEST_F(ClaudeServiceTest, NamesAndIdentifiers) {
  const struct {
    StringMap event;
    const char *id, *project;
  } cases[] = {
      {{{"cwd", "/src/shop"}}, "default", "shop"},
      {{{"session_id", "a"}, {"cwd", "/src/shop/"}}, "a", "shop"},
      {{{"session_id", "a"}, {"cwd", "/"}}, "a", "/"},
      {{{"session_id", "a"}, {"cwd", ""}}, "a", "Claude Code"},
      {{{"session_id", "a"}}, "a", "Claude Code"},
      {{{"session_id", ""}, {"cwd", "relative"}}, "", "relative"},
  };
  for (auto [event, id, project] : cases) {
    event["hook_event_name"] = "SessionStart";
    claude.handle(event);
    EXPECT_EQ(session(id).project, project);
    EXPECT_EQ(session(id).id, id);
  }
  EXPECT_EQ(claude.sessions->size(), 3u);
}

TEST_F(ClaudeServiceTest, NothingOfAnotherMachineIsTakenForSomethingHere) {
  const StringMap caller{{"process", "1234"}, {"process_namespace", "4026531836"},
      {"transcript_path", "/home/ada/t.jsonl"}, {"WINDOWID", "7"}};
  send("SessionStart", caller);
  EXPECT_FALSE(session().elsewhere);
  EXPECT_EQ(session().process, (ForeignProcess{1234, 4026531836}));
  EXPECT_EQ(session().transcript, "/home/ada/t.jsonl");
  EXPECT_EQ(session().terminal, (StringMap{{"WINDOWID", "7"}}));
  StringMap remote = caller;
  remote[machineKey] = "build\tserver";
  send("SessionStart", remote);
  EXPECT_EQ(session().elsewhere, "build server");
  EXPECT_EQ(session().process, std::nullopt);
  EXPECT_EQ(session().transcript, "");
  EXPECT_TRUE(session().terminal.empty());
}

TEST_F(ClaudeServiceTest, SoundsFollowTheSetting) {
  AppSettings settings(desktop.defaults);
  claude.settings = &settings;
  settings.claudeSounds = false;
  send("Notification");
  send("Stop");
  EXPECT_EQ(banners.size(), 2u);
  EXPECT_TRUE(desktop.sounds.played.empty());
  settings.claudeSounds = true;
  send("Stop");
  EXPECT_THAT(desktop.sounds.played, ElementsAre(Sound::complete));
}

TEST_F(ClaudeServiceTest, SessionsThatWantTheUserComeFirst) {
  for (const char* name : {"SessionStart", "Stop", "PreToolUse", "Notification"}) {
    for (const char* age : {"older", "newer"}) {
      send(name, {{"session_id", std::string(name) + " " + age}});
      pass(1);
    }
  }
  EXPECT_THAT(order(),
      ElementsAre("Notification newer", "Notification older", "PreToolUse newer", "PreToolUse older",
          "Stop newer", "Stop older", "SessionStart newer", "SessionStart older"));
  EXPECT_EQ(claude.workingCount(), 2);
  EXPECT_TRUE(claude.anyWaiting());

  // An observer that reads the derived values sees the new ones.
  std::vector<std::string> seen;
  const auto subscription = claude.observe([&] { seen = order(); });
  claude.clearFinished();
  EXPECT_THAT(
      seen, ElementsAre("Notification newer", "Notification older", "PreToolUse newer", "PreToolUse older"));
  send("SessionEnd", {{"session_id", "Notification older"}});
  send("Stop", {{"session_id", "Notification newer"}});
  EXPECT_THAT(seen, ElementsAre("PreToolUse newer", "PreToolUse older", "Notification newer"));
  EXPECT_FALSE(claude.anyWaiting());
  claude.sessions = {};
  EXPECT_EQ(claude.workingCount(), 0);
  EXPECT_TRUE(claude.ordered().empty());
}

TEST_F(ClaudeServiceTest, SessionsComeToRestAndAreForgotten) {
  const struct {
    const char* event;
    double age;
    std::optional<Phase> phase;
  } cases[] = {
      {"PreToolUse", 900, Phase::working},
      {"PreToolUse", 902, Phase::idle},
      {"PreToolUse", 1200, Phase::idle},
      {"PreToolUse", 1203, std::nullopt},
      {"SessionStart", 1200, Phase::idle},
      {"SessionStart", 1202, std::nullopt},
      {"Stop", 1200, Phase::done},
      {"Stop", 1202, std::nullopt},
      {"Notification", 1e6, Phase::waiting},
  };
  for (const auto& c : cases) {
    claude.sessions = {};
    send(c.event);
    pass(c.age);
    EXPECT_EQ(phase(), c.phase) << c.event << " " << c.age;
  }
  claude.sessions = {};
  EXPECT_EQ(desktop.scheduler.nextDue(), std::nullopt) << "nothing to wait for";

  send("PreToolUse");
  const Date last = desktop.scheduler.now();
  const ForcedLanguage french("fr");
  desktop.scheduler.setClock(5000);
  pass(0);
  EXPECT_EQ(phase(), Phase::idle) << "the machine has slept";
  EXPECT_EQ(session().activity, "Inactif") << "in the language of the moment";
  EXPECT_EQ(session().updatedAt, last) << "going idle is no event";
  pass(299);
  EXPECT_EQ(phase(), Phase::idle) << "seen at rest before it goes";
  pass(3);
  EXPECT_EQ(phase(), std::nullopt);
}

TEST_F(ClaudeServiceTest, AFloodOfSessionsIsBounded) {
  send("PreToolUse", {{"session_id", "working"}});
  send("SessionStart", {{"session_id", "oldest at rest"}});
  pass(1);
  for (int i = 0; i < 97; ++i) send("Stop", {{"session_id", std::to_string(i)}});
  send("Notification", {{"session_id", "waiting"}});
  EXPECT_EQ(claude.sessions->size(), 100u);
  send("PreToolUse", {{"session_id", "new"}});
  EXPECT_EQ(claude.sessions->size(), 100u);
  EXPECT_FALSE(claude.sessions->contains("oldest at rest"));
  pass(1);
  for (int i = 0; i < 1000; ++i) send("SessionStart", {{"session_id", "flood " + std::to_string(i)}});
  EXPECT_EQ(claude.sessions->size(), 100u);
  EXPECT_TRUE(claude.sessions->contains("working") && claude.sessions->contains("waiting"));
  for (int i = 0; i < 1000; ++i) {
    send("Notification", {{"session_id", "other " + std::to_string(i)}, {machineKey, "build server"}});
  }
  EXPECT_EQ(claude.sessions->size(), 150u) << "those elsewhere do not push out those here";
  EXPECT_TRUE(claude.sessions->contains("working"));

  const std::string hostile = "Bash\u202e\n" + std::string(1 << 20, 'x');
  const StringMap texts{
      {"cwd", "/" + hostile}, {"tool_name", hostile}, {"tool_detail", hostile}, {"message", hostile}};
  send("PreToolUse", texts);
  EXPECT_TRUE(session().activity.starts_with("Bash xx")) << session().activity;
  EXPECT_LT(session().activity.size(), 500u);
  send("Notification", texts);
  EXPECT_TRUE(banners.back().first.subtitle.starts_with("Bash xx"));
  EXPECT_LT(banners.back().first.title.size() + banners.back().first.subtitle.size(), 500u);
}

}  // namespace
}  // namespace tarnwick
