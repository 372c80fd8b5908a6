#include "cli/HookCLI.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <vector>

using namespace tarnwick;
using testing::ElementsAre;

TEST(HookCLI, DemoPostsASessionOfSixEvents) {
  /// Notes posts and pauses in their order.
  struct Recorder : NotificationPoster {
    std::vector<std::string> steps;
    void post(std::string_view name, const StringMap& userInfo) override {
      EXPECT_EQ(name, "dev.tarnwick.event");
      EXPECT_EQ(userInfo.at("session_id"), "demo");
      EXPECT_EQ(userInfo.at("cwd"), std::filesystem::current_path());
      steps.push_back(userInfo.at("hook_event_name"));
    }
  } recorder;
  HookCLI::demo(recorder, [&](unsigned seconds) { recorder.steps.push_back(std::to_string(seconds)); });
  EXPECT_THAT(recorder.steps, ElementsAre("UserPromptSubmit", "2", "PreToolUse", "3", "Notification", "4",
                                          "PostToolUse", "1", "PreToolUse", "3", "Stop", "0"));
}
