#include "claude/SessionWatch.h"

#include <gtest/gtest.h>

#include "support/ForcedLanguage.h"
#include "support/MemoryDesktop.h"

using namespace tarnwick;

namespace {

constexpr int32_t process = 77;
constexpr const char* transcript = "/t/s.jsonl";

class SessionWatchTest : public testing::Test {
 protected:
  void send(const std::string& name, StringMap event = {}) {
    event.merge(StringMap{{"hook_event_name", name}, {"session_id", "s"},
        {"process", std::to_string(process)}, {"process_namespace", "1"}, {"transcript_path", transcript}});
    claude.handle(event);
  }
  void ask(const std::string& command) {
    send("PermissionRequest", {{"tool_name", "Bash"}, {"tool_detail", command}});
  }
  const Session& session() const { return claude.sessions->at("s"); }
  auto& children() { return desktop.foreignProcesses.running[process]; }

  const ForcedLanguage english{"en"};
  MemoryDesktop desktop;
  ClaudeService claude{desktop.scheduler, desktop.sounds};
  SessionWatch watch{claude, desktop.scheduler, desktop.foreignProcesses, desktop.growingFiles};
};

TEST_F(SessionWatchTest, RestsWhenThePromptIsTakenBack) {
  const std::string status = "/c/sessions/77.json";
  const auto write = [&](const std::string& what, const std::string& id = "s") {
    desktop.growingFiles.append(status, R"({"pid":77,"sessionId":")" + id + R"(","status":")" + what + "\"}");
  };
  const auto prompt = [&] {
    send("UserPromptSubmit", {{"transcript_path", "/c/projects/-src-shop/s.jsonl"}});
  };
  prompt();
  ASSERT_TRUE(desktop.growingFiles.isFollowed(status));
  write("idle");
  desktop.scheduler.advance(20);
  EXPECT_EQ(session().phase, Phase::working) << "it has not begun, or works in the background";
  write("busy");
  write("idle", "another");
  desktop.growingFiles.append(status, "{");
  desktop.scheduler.advance(20);
  EXPECT_EQ(session().phase, Phase::working);
  write("idle");
  write("busy");
  desktop.scheduler.advance(20);
  EXPECT_EQ(session().phase, Phase::working);
  write("idle");
  desktop.scheduler.advance(1);
  send("PreToolUse", {{"transcript_path", "/c/projects/-src-shop/s.jsonl"}});
  desktop.scheduler.advance(20);
  EXPECT_EQ(session().phase, Phase::working) << "something was heard of it";
  write("idle");
  desktop.scheduler.advance(4);
  EXPECT_EQ(session().phase, Phase::idle);
  EXPECT_EQ(session().activity, "Interrupted");
  EXPECT_FALSE(desktop.growingFiles.isFollowed(status));
  send("UserPromptSubmit");
  EXPECT_FALSE(desktop.growingFiles.isFollowed(status)) << "the transcript lies elsewhere";
}

TEST_F(SessionWatchTest, WorksAgainOnceTheGrantedCommandRuns) {
  struct Case {
    std::string command, arguments;
    bool runs;
  };
  const Case cases[] = {
      {"npm test", "/bin/sh -c source x && eval 'npm test' < /dev/null", true},
      {"echo 'a b' \"c\"", "sh -c eval 'echo '\\''a b'\\'' \"c\"'", true},
      {"line one\nline two", "sh -c eval 'line one line two'", true},
      {"npm test", "sh -c npm run build", false},
      {"b a", "sh -c a b", false},
      {"'", "sh -c '", false},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.command);
    // What runs already, such as a server that was started with the same words, tells nothing.
    children() = {{1, "server npm test"}};
    ask(one.command);
    desktop.scheduler.advance(20);
    EXPECT_EQ(session().phase, Phase::waiting);
    children().push_back({2, one.arguments});
    desktop.scheduler.advance(20);
    EXPECT_EQ(session().phase, one.runs ? Phase::working : Phase::waiting);
    if (one.runs) {
      EXPECT_TRUE(session().activity.starts_with("Running · "));
    }
    EXPECT_EQ(session().request() != nullptr, !one.runs);
    send("PostToolUse");
  }
}

TEST_F(SessionWatchTest, TellsTheCommandsOfOneSessionApart) {
  uint64_t number = 0;
  for (const char* command : {"make", "npm test", "make"}) {
    claude.handle(
        {{"hook_event_name", "PermissionRequest"}, {"session_id", "s"}, {"tool_name", "Bash"},
            {"tool_detail", command}, {"process", std::to_string(process)}, {"process_namespace", "1"}},
        ++number);
  }
  const auto numbers = [&] {
    std::string all;
    for (const auto& request : session().requests) all += std::to_string(request.number);
    return all;
  };
  children() = {{1, "sh -c make"}};
  desktop.scheduler.advance(20);
  EXPECT_EQ(numbers(), "23") << "one process is one command";
  children().push_back({2, "sh -c npm test"});
  desktop.scheduler.advance(20);
  EXPECT_EQ(numbers(), "3");
  EXPECT_EQ(session().phase, Phase::waiting);
}

TEST_F(SessionWatchTest, LooksLessAndLessOftenAndOnlyWhileACommandWaits) {
  ask("make");
  desktop.scheduler.advance(5);
  EXPECT_GE(desktop.foreignProcesses.looks, 10) << "soon, at first";
  desktop.scheduler.advance(3600);
  const int before = desktop.foreignProcesses.looks;
  desktop.scheduler.advance(3600);
  EXPECT_LE(desktop.foreignProcesses.looks - before, 61);
  send("PostToolUse");
  send("PermissionRequest", {{"tool_name", "Write"}, {"tool_detail", "/a"}});
  const int after = desktop.foreignProcesses.looks;
  desktop.scheduler.advance(100);
  EXPECT_EQ(desktop.foreignProcesses.looks, after);
}

TEST_F(SessionWatchTest, LooksForTheCommandsOfManyAtOnce) {
  for (int i = 0; i < 50; ++i) {
    claude.handle({{"hook_event_name", "PermissionRequest"}, {"session_id", std::to_string(i)},
        {"tool_name", "Bash"}, {"tool_detail", "make"}, {"process", std::to_string(process)},
        {"process_namespace", "1"}});
    desktop.scheduler.advance(0.3);
  }
  desktop.scheduler.advance(600);
  std::set<double> times;
  desktop.foreignProcesses.onLook = [&] { times.insert(desktop.scheduler.uptime()); };
  desktop.scheduler.advance(600);
  EXPECT_LE(times.size(), 21u);
  EXPECT_GE(times.size(), 10u);
}

TEST_F(SessionWatchTest, WorksOnWhenTheTranscriptSaysThatTheUserRefused) {
  ask("make");
  const std::string said = "The user doesn't want to proceed with this tool use. The user said: no";
  for (const char* type : {"assistant", "user"}) {
    EXPECT_EQ(session().phase, Phase::waiting);
    desktop.growingFiles.append(transcript,
        R"({"type":")" + std::string(type) + R"(","message":{"content":[{"type":"tool_result","content":")" +
            said + "\"}]}}");
  }
  EXPECT_EQ(session().phase, Phase::working);
  EXPECT_FALSE(session().request());
}

TEST_F(SessionWatchTest, RestsWhenTheTranscriptSaysThatTheUserInterrupted) {
  const auto said = [](const std::string& type, const std::string& content) {
    return R"({"type":")" + type + R"(","message":{"role":"user","content":)" + content + "}}";
  };
  const std::string marker = "[Request interrupted by user for tool use]";
  const std::string part = R"([{"type":"text","text":")" + marker + "\"}]";
  const std::pair<std::string, bool> cases[] = {
      {said("user", part), true},
      {said("user", "\"[Request interrupted by user]\""), true},
      {said("assistant", part), false},
      {said("user", R"([{"type":"text","text":"see )" + marker + "\"}]"), false},
      {said("user", R"([{"type":"tool_result","content":")" + marker + "\"}]"), false},
      {marker, false},
  };
  for (const auto& [line, interrupts] : cases) {
    SCOPED_TRACE(line);
    ask("make");
    desktop.growingFiles.append(transcript, line);
    EXPECT_EQ(session().phase, interrupts ? Phase::idle : Phase::waiting);
    if (interrupts) {
      EXPECT_EQ(session().activity, "Interrupted");
    }
    EXPECT_EQ(desktop.growingFiles.isFollowed(transcript), !interrupts) << "only while it works or waits";
  }
}

TEST_F(SessionWatchTest, ForgetsASessionWhoseProgramHasEnded) {
  send("UserPromptSubmit");
  desktop.foreignProcesses.end(process + 1);
  ASSERT_TRUE(claude.sessions->contains("s"));
  desktop.foreignProcesses.end(process);
  EXPECT_TRUE(claude.sessions->empty());
  EXPECT_FALSE(desktop.growingFiles.isFollowed(transcript));
}

}  // namespace
