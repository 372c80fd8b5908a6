#include "claude/CallLines.h"

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

/// One line each, behind a sign of its kind.
std::string described(const std::string& tool, const std::string& input) {
  std::string all;
  for (const CallLine& line : callLines(tool, input)) {
    all += " @#-+"[static_cast<int>(line.kind)];
    all += line.text + '\n';
  }
  return all;
}

TEST(CallLines, ShowAllOfACall) {
  const struct {
    const char *what, *tool, *input, *lines;
  } cases[] = {
      {"a command", "Bash", R"({"command":"make\nmake test","description":"Build","timeout":5})",
          " make\n make test\n#Build\n#timeout: 5\n"},
      {"what is said of a command besides", "Bash", R"({"command":"a","run_in_background":true,"x":{"y":1}})",
          " a\n#run_in_background: true\n#x: {\n#  \"y\": 1\n#}\n"},
      {"no command", "Bash", R"({"command":["a"]})", " {\n   \"command\": [\n     \"a\"\n   ]\n }\n"},
      {"an edit", "Edit",
          R"({"file_path":"/a.c","old_string":"a\nb\nc\nd","new_string":"a\nx\ny\nc","replace_all":true})",
          "@/a.c\n a\n-b\n+x\n+y\n c\n-d\n#replace_all: true\n"},
      {"an edit that ends a line", "Edit", R"({"file_path":"f","old_string":"a","new_string":"a\n"})",
          "@f\n a\n+\n"},
      {"an edit that begins a file", "Edit", R"({"file_path":"f","old_string":"","new_string":"a"})",
          "@f\n+a\n"},
      {"an edit of another shape", "Edit", R"({"file_path":"f","old_string":1})",
          " {\n   \"file_path\": \"f\",\n   \"old_string\": 1\n }\n"},
      {"a file", "Write", R"({"file_path":"f","content":"a\n b"})", "@f\n+a\n+ b\n"},
      {"several edits", "MultiEdit",
          R"({"file_path":"f","edits":[{"old_string":"a","new_string":"b"},{"old_string":"c","new_string":""}]})",
          "@f\n-a\n+b\n#\n-c\n"},
      {"another tool", "mcp__db__run", R"({"sql":"DROP\u001b","n":1.50})",
          " {\n   \"n\": 1.50,\n   \"sql\": \"DROP\\u001b\"\n }\n"},
      {"no JSON", "Bash", R"({"command")", " {\"command\"\n"},
  };
  for (const auto& one : cases) EXPECT_EQ(described(one.tool, one.input), one.lines) << one.what;
}

TEST(CallLines, TakeBoundedTimeAndRoom) {
  const std::string deep = R"({"a":)" + std::string(400, '[') + std::string(400, ']') + "}";
  EXPECT_EQ(described("x", deep), " " + deep + "\n") << "not indented";
  std::string before, after;
  for (int i = 0; i < 5000; ++i) {
    before += "a\\n";
    after += "b\\n";
  }
  const auto lines = callLines(
      "Edit", R"({"file_path":"f","old_string":")" + before + R"(","new_string":")" + after + "\"}");
  EXPECT_EQ(lines.size(), 1u + 2 * 5001);
}

}  // namespace
}  // namespace tarnwick
