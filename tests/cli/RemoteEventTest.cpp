#include "cli/RemoteEvent.h"

#include <gmock/gmock.h>

using namespace tarnwick;

TEST(RemoteEvent, KeepsNothingThatMeansSomethingOnOneMachineOnly) {
  const StringMap event{{"hook_event_name", "PreToolUse"}, {"session_id", "s"}, {"cwd", "/w"},
      {"tool_name", "Bash"}, {"tool_detail", "say \"hé\"\n"}, {"question", "Which?"}, {"process", "7"},
      {"process_namespace", "8"}, {"transcript_path", "/t"}, {"WINDOWID", "9"}, {"TMUX", "/x,1,0"}};
  const std::string line = remoteLine(event, "build server");
  EXPECT_EQ(line,
      R"({"machine":"build server","hook_event_name":"PreToolUse","session_id":"s","cwd":"/w",)"
      R"("tool_name":"Bash","tool_detail":"say \"hé\"\n","question":"Which?"})"
      "\n");
  const StringMap read{{"machine", "build server"}, {"hook_event_name", "PreToolUse"},
      {"session_id", "elsewhere,12,build server,s"}, {"cwd", "/w"}, {"tool_name", "Bash"},
      {"tool_detail", "say \"hé\"\n"}, {"question", "Which?"}};
  EXPECT_EQ(readRemoteLine(line), read);
}

TEST(RemoteEvent, ReadsWhateverIsWritten) {
  struct Case {
    const char* line;
    std::optional<StringMap> event;
  };
  const Case cases[] = {
      // As Claude Code itself gives it to a hook.
      {R"({"session_id":"s","tool_input":{"command":"make"},"process":"1","WINDOWID":"2","transcript_path":"/t"})",
          StringMap{{"machine", ""}, {"session_id", "elsewhere,0,,s"}, {"tool_detail", "make"}}},
      {R"({"machine":7,"tool_detail":{"a":"b"},"question":[]})",
          StringMap{{"machine", ""}, {"session_id", "elsewhere,0,,default"}}},
      {R"({"machine":"a,1","session_id":"b"})",
          StringMap{{"machine", "a,1"}, {"session_id", "elsewhere,3,a,1,b"}}},
      {R"({"machine":"a"} {"machine":"a"})", {}},
      {R"({"machine":"a")", {}},
      {R"(["machine"])", {}},
      {"\"machine\"", {}},
      {"\xFF\xFE", {}},
      {"", {}},
  };
  for (const Case& one : cases) EXPECT_EQ(readRemoteLine(one.line), one.event) << one.line;
  const std::string longName = R"({"machine":")" + std::string(1000, 'm') + "\"}";
  EXPECT_EQ(readRemoteLine(longName)->at("machine"), std::string(64, 'm'));
}
