#include "cli/HookEvent.h"

#include <gmock/gmock.h>

#include "platform/PermissionRequests.h"

using namespace tarnwick;
using namespace std::string_literals;

namespace {

/// Hands a text out in pieces of one size.
ByteSource inPieces(std::string_view text, size_t size) {
  return [text, size]() mutable {
    const std::string_view piece = text.substr(0, size);
    text.remove_prefix(piece.size());
    return piece;
  };
}

std::optional<StringMap> read(std::string_view text) { return readHookEvent(inPieces(text, 65536)); }

}  // namespace

TEST(HookEvent, IsReducedToAFlatMap) {
  struct Case {
    const char* json;
    StringMap map;
  };
  const Case cases[] = {
      {"{}", {}},
      {R"({"hook_event_name":"Stop","session_id":"s","cwd":"/w","tool_name":"Bash","message":"m",
           "notification_type":"n","prompt":"p","transcript_path":"/t","stop_hook_active":true})",
          {{"hook_event_name", "Stop"}, {"session_id", "s"}, {"cwd", "/w"}, {"tool_name", "Bash"},
              {"message", "m"}, {"notification_type", "n"}, {"prompt", "p"}, {"transcript_path", "/t"}}},
      // Only strings are copied.
      {R"({"session_id":7,"cwd":null,"tool_name":true,"message":{"message":"x"},"prompt":["x"],
           "notification_type":1.5,"hook_event_name":"Stop"})",
          {{"hook_event_name", "Stop"}}},
      {R"({"prompt":"","\u0070rompt2":"x"})", {{"prompt", ""}}},
      {R"({"\u0063wd":"a\n\"\\\/\u00e9\ud83d\ude00\u0000z"})", {{"cwd", "a\n\"\\/é😀\0z"s}}},
      {R"({"last_assistant_message":"No credit","error":"e","hook_event_name":"StopFailure"})",
          {{"hook_event_name", "StopFailure"}, {"error", "e"}, {"last_assistant_message", "No credit"}}},
      {R"({"last_assistant_message":"All done","hook_event_name":"Stop"})", {{"hook_event_name", "Stop"}}},
      // Known keys count at the top level only.
      {R"({"other":{"prompt":"x","tool_input":{"command":"x"}},"list":[{"cwd":"x"}]})", {}},
      // Of a key given twice the last value counts.
      {R"({"prompt":"a","prompt":"b"})", {{"prompt", "b"}}},
      {R"({"prompt":"a","prompt":{}})", {}},
      {R"({"prompt":[],"prompt":"b"})", {{"prompt", "b"}}},
  };
  for (const Case& one : cases) EXPECT_EQ(read(one.json), one.map) << one.json;
}

TEST(HookEvent, TakesTheFirstQuestion) {
  const std::pair<const char*, StringMap> cases[] = {
      {R"({"questions":[{"header":"a","question":"b","options":[{"question":"c"}]},{"question":"d"}]})",
          {{"question", "b"}}},
      {R"({"questions":[{"options":[{"question":"c"}]}],"question":"d"})", {}},
      {R"({"other":[{"question":"a"}],"questions":["question",["question"],{"question":7}]})", {}},
      {R"({"questions":[{"question":"a"}]},"tool_input":{})", {}},
  };
  for (const auto& [input, map] : cases) EXPECT_EQ(read(R"({"tool_input":)"s + input + "}"), map) << input;
}

TEST(HookEvent, TakesTheToolDetailFromTheFirstKeyThatHoldsAString) {
  struct Case {
    const char* input;
    std::optional<std::string> detail;
  };
  const Case cases[] = {
      {R"({"query":"q","url":"u","description":"d","pattern":"p","file_path":"f","command":"c"})", "c"},
      {R"({"query":"q","url":"u","description":"d","pattern":"p"})", "p"},
      {R"({"query":"q"})", "q"},
      {R"({"command":1,"file_path":"f"})", "f"},
      {R"({"command":null,"file_path":["f"],"pattern":{"command":"x"}})", std::nullopt},
      {R"({"command":"","file_path":"f"})", ""},
      {R"({"old":{"command":"x"},"list":[{"command":"y"}],"url":"u"})", "u"},
      {R"({"command":"a","command":2,"url":"u"})", "u"},
      {R"(["command"])", std::nullopt},
      {R"({"command":"a"},"tool_input":{"url":"u"})", "u"},
      {R"({"command":"a"},"tool_input":7)", std::nullopt},
      {R"({"command":"a"},"command":"b","other":{"command":"c"})", "a"},
  };
  for (const Case& one : cases) {
    StringMap expected;
    if (one.detail) expected["tool_detail"] = *one.detail;
    EXPECT_EQ(read(R"({"tool_input":)"s + one.input + "}"), expected) << one.input;
  }
}

TEST(HookEvent, CutsLongTexts) {
  const std::string text(250, 'x');
  EXPECT_EQ(read(R"({"prompt":")" + text + R"(","tool_input":{"command":")" + text + R"("}})"),
      (StringMap{{"prompt", text.substr(0, 200)}, {"tool_detail", text.substr(0, 120)}}));
  // One character that a user sees, longer than what is held: the cut is not inside a code point.
  std::string marked = "xxx";
  for (int marks = 0; marks < 10000; ++marks) marked += "\u0301";
  EXPECT_EQ(read(R"({"prompt":")" + marked + R"("})"), (StringMap{{"prompt", marked.substr(0, 16383)}}));
}

TEST(HookEvent, KeepsTheInputOfAToolThatAsksForAPermission) {
  const std::string asks = R"("hook_event_name":"PermissionRequest")";
  const struct {
    std::string json;
    std::optional<std::string> input;
  } cases[] = {
      {"{" + asks + R"(,"tool_input":{"a" : [ ], "b":[{},1.50,"x\u00e9\n\u001b"],"c":{"d":null,"e":true}}})",
          R"({"a":[],"b":[{},1.50,"xé\n\u001b"],"c":{"d":null,"e":true}})"},
      {R"({"tool_input":{"b":2,"a":1},)" + asks + "}", R"({"b":2,"a":1})"},
      {"{" + asks + R"(,"tool_input":{"a":1},"tool_input":{},"other":{"a":2}})", "{}"},
      {"{" + asks + R"(,"tool_input":{"a":1},"tool_input":[2]})", std::nullopt},
      {"{" + asks + R"(,"tool_input":{"a":"\ud83d"}})", "{\"a\":\"\uFFFD\"}"},
      {"{" + asks + R"(,"tool_name":"AskUserQuestion","tool_input":{"a":1}})", std::nullopt},
      {R"({"hook_event_name":"PreToolUse","tool_input":{"a":1}})", std::nullopt},
      {R"({"tool_input":{"a":1}})", std::nullopt},
  };
  for (const auto& one : cases) {
    for (size_t size = 1; size < 20; ++size) {
      const auto event = readHookEvent(inPieces(one.json, size), HookEventForm::withInput);
      EXPECT_EQ(valueOf(*event, toolInputKey), one.input) << one.json << " in pieces of " << size;
    }
    EXPECT_FALSE(read(one.json)->contains(toolInputKey));
  }
  for (const size_t more : {0, 1}) {
    const std::string input = "{\"a\":\"" + std::string(longestToolInput - 8 + more, 'x') + "\"}";
    const std::string json = "{" + asks + ",\"tool_input\":" + input + "}";
    const auto event = readHookEvent(inPieces(json, 4096), HookEventForm::withInput);
    EXPECT_EQ(valueOf(*event, toolInputKey), more ? std::nullopt : std::optional(input));
  }
}

TEST(HookEvent, IsNothingUnlessTheInputIsAJsonObject) {
  const std::string texts[] = {"", "[]", R"("prompt")", R"({"prompt":"x")", R"({"prompt":"x"} {})",
      "{\"prompt\":\"x\"}\0"s, "{\"prompt\":\"x\ny\"}", R"({"prompt":"\ud83d\u12g4"})",
      R"({"prompt":"\ud83d)", "{\"other\":\"caf\xE9\"}", "\xEF\xBB{}", "\xEF\xBB\xBF\xEF\xBB\xBF{}",
      std::string(100000, '[')};
  for (const std::string& text : texts) EXPECT_EQ(read(text), std::nullopt) << text.substr(0, 60);
}

TEST(HookEvent, DoesNotDependOnHowTheInputArrives) {
  struct Case {
    const char* json;
    StringMap map;
  };
  const Case cases[] = {
      {"\xEF\xBB\xBF{\"prompt\":\"a\",\"tool_input\":{\"x\":1e400,\"command\":\"c\"}}",
          {{"prompt", "a"}, {"tool_detail", "c"}}},
      {R"({"a":[-0,0,-12.50e-99999,1E+400,7,true,null],"prompt":"-1e400","cwd":"/é/\ud83d\ude00"} )",
          {{"prompt", "-1e400"}, {"cwd", "/é/😀"}}},
      // Texts that were cut inside an emoji.
      {R"({"prompt":"abc\ud83d","cwd":"\uDE00abc"})", {{"prompt", "abc\uFFFD"}, {"cwd", "\uFFFDabc"}}},
      {R"({"prompt":"\ud83d\n\u00e9\ud83d\\ude00\ud83d\""})", {{"prompt", "\uFFFD\né\uFFFD\\ude00\uFFFD\""}}},
      {R"({"\udfff":["\udfff"],"prompt":"b"})", {{"prompt", "b"}}},
  };
  for (const Case& one : cases) {
    for (size_t size = 1; size < 20; ++size)
      EXPECT_EQ(readHookEvent(inPieces(one.json, size)), one.map) << one.json << " in pieces of " << size;
  }
}

TEST(HookEvent, ReadsTheInputToItsEndWhateverIsInIt) {
  for (const char* text : {R"({"prompt":"x"} and more)", "[1, 2, 3, 4]", "garbage, garbage"}) {
    bool isAtEnd = false;
    auto pieces = inPieces(text, 2);
    readHookEvent([&] {
      const auto piece = pieces();
      isAtEnd = piece.empty();
      return piece;
    });
    EXPECT_TRUE(isAtEnd) << text;
  }
}
