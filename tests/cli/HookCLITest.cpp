#include "cli/HookCLI.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace tarnwick;

TEST(HookCLI, DemoPostsASessionOfSixEvents) {
  /// Notes what each post adds to the session, and the pause behind it.
  struct Recorder : NotificationPoster {
    std::vector<std::pair<StringMap, unsigned>> steps;
    void post(std::string_view name, const StringMap& userInfo) override {
      EXPECT_EQ(name, "dev.tarnwick.event");
      StringMap event = userInfo;
      EXPECT_EQ(event.extract("session_id").mapped(), "demo");
      EXPECT_EQ(event.extract("cwd").mapped(), std::filesystem::current_path());
      steps.emplace_back(event, 0);
    }
  } recorder;
  HookCLI::demo(recorder, [&](unsigned seconds) { recorder.steps.back().second = seconds; });
  const auto event = [](const char* name, StringMap added = {}) {
    added["hook_event_name"] = name;
    return added;
  };
  EXPECT_THAT(recorder.steps,
      testing::ElementsAre(std::pair(event("UserPromptSubmit", {{"prompt", "Ajoute des tests"}}), 2),
          std::pair(event("PreToolUse", {{"tool_name", "Bash"}, {"tool_detail", "npm test"}}), 3),
          std::pair(event("Notification", {{"notification_type", "permission_prompt"},
                                              {"message", "Claude needs your permission to use Bash"}}),
              4),
          std::pair(event("PostToolUse", {{"tool_name", "Bash"}}), 1),
          std::pair(event("PreToolUse", {{"tool_name", "Edit"}, {"tool_detail", "src/app.test.ts"}}), 3),
          std::pair(event("Stop"), 0)));
}
