#include "claude/SessionsJson.h"

#include <gmock/gmock.h>

#include "claude/ClaudeService.h"
#include "support/MemoryDesktop.h"

namespace tarnwick {
namespace {

TEST(SessionsJson, TellsEachSessionAndSinceWhen) {
  MemoryDesktop desktop;
  ClaudeService claude(desktop.scheduler, desktop.sounds);
  const auto hook = [&](const char* id, const char* event, StringMap more = {}) {
    more.merge(StringMap{{"session_id", id}, {"hook_event_name", event}, {"cwd", std::string("/src/") + id}});
    claude.handle(more);
    desktop.scheduler.advance(10);
  };
  const auto start = static_cast<long long>(desktop.scheduler.now().secondsSince1970);
  const auto line = [&](const char* phase, const char* project, const char* activity, int since) {
    return std::string(R"({"phase":")") + phase + R"(","project":")" + project + R"(","activity":")" +
           activity + R"(","since":)" + std::to_string(start + since) + "}";
  };
  EXPECT_EQ(sessionsJson(claude.ordered()), "[]");
  hook("new", "SessionStart");
  hook("\"é\"", "UserPromptSubmit");
  hook("\"é\"", "PreToolUse", {{"tool_name", "Bash"}, {"tool_detail", "make"}});
  hook("ask", "UserPromptSubmit");
  hook("ask", "PermissionRequest", {{"tool_name", "Bash"}});
  hook("ask", "Notification", {{"notification_type", "permission_prompt"}});
  hook("done", "Stop");
  EXPECT_EQ(sessionsJson(claude.ordered()),
      "[" + line("waiting", "ask", "Permission needed: Bash", 40) + "," +
          line("working", R"(\"é\")", claude.sessions->at("\"é\"").activity.c_str(), 10) + "," +
          line("done", "done", "Done in 0s", 60) + "," + line("idle", "new", "", 0) + "]");

  hook("there", "SessionStart", {{machineKey, "build server"}});
  EXPECT_THAT(sessionsJson(claude.ordered()),
      testing::HasSubstr(R"("project":"there","machine":"build server","activity")"));
  claude.end("there");
  hook("later", "Notification", {{"message", "Look"}});
  EXPECT_EQ(claude.longestWaiting()->id, "ask");
  claude.resume("ask", *claude.sessions->at("ask").request());
  EXPECT_EQ(claude.longestWaiting()->id, "later");
  claude.interrupt("later");
  EXPECT_EQ(claude.longestWaiting(), std::nullopt);
  EXPECT_EQ(claude.sessions->at("later").phaseSince, desktop.scheduler.now());
  for (const char* id : {"ask", "later", "done", "nobody"}) claude.forget(id);
  EXPECT_EQ(claude.sessions->size(), 3u) << "what works stays";
}

}  // namespace
}  // namespace tarnwick
