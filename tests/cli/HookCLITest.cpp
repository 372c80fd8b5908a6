#include "cli/HookCLI.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <vector>

using namespace tarnwick;
using testing::ElementsAre;

TEST(HookCLI, DemoPostsASessionOfSixEvents) {
  /// Notes posts and pauses in their order.
  struct Recorder : NotificationPoster {
    std::vector<StringMap> events;
    std::vector<unsigned> pauses;
    void post(std::string_view name, const StringMap& userInfo) override {
      EXPECT_EQ(name, "dev.tarnwick.event");
      EXPECT_EQ(events.size(), pauses.size());
      events.push_back(userInfo);
    }
  } recorder;
  HookCLI::demo(recorder, [&](unsigned seconds) { recorder.pauses.push_back(seconds); });

  const auto step = [](StringMap keys) {
    keys["session_id"] = "demo";
    keys["cwd"] = std::filesystem::current_path();
    return keys;
  };
  EXPECT_THAT(
      recorder.events,
      ElementsAre(
          step({{"hook_event_name", "UserPromptSubmit"}, {"prompt", "Ajoute des tests"}}),
          step({{"hook_event_name", "PreToolUse"}, {"tool_name", "Bash"}, {"tool_detail", "npm test"}}),
          step({{"hook_event_name", "Notification"},
                {"notification_type", "permission_prompt"},
                {"message", "Claude needs your permission to use Bash"}}),
          step({{"hook_event_name", "PostToolUse"}, {"tool_name", "Bash"}}),
          step(
              {{"hook_event_name", "PreToolUse"}, {"tool_name", "Edit"}, {"tool_detail", "src/app.test.ts"}}),
          step({{"hook_event_name", "Stop"}})));
  EXPECT_THAT(recorder.pauses, ElementsAre(2, 3, 4, 1, 3, 0));
}
